// The CAN client and nvh-tool can-log against a gateway of this test's own, byte by byte.

#include "nvh/capture/LoggerRunning.h"
#include "nvh/capture/NvhCanEth.h"
#include "tests/support/Files.h"
#include "tests/support/Rows.h"

#include <HelixDash/services/Logger.h>
#include <HelixDash/services/RuntimeEnv.h>

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QUdpSocket>

#include <csignal>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>

using Datagrams = QList<QByteArray>;

const QByteArray kStart = QByteArray::fromHex("0000000b01020108");
const QByteArray kStop = QByteArray::fromHex("0000000b00020108");
const QByteArray kAck = QByteArray::fromHex("0000020b01020108");
const QByteArray kWrongAck = QByteArray::fromHex("0000020b01030108");
const QStringList kFailedRun = {"ackFailed", "finished", "ended"};
constexpr int kReceivesInAll = 17;

// The protocol's ports are fixed: in a network of its own the test meets nobody else's. Without the right to make one
// it uses the machine's.
static void enterOwnNetwork() {
    if (::unshare(CLONE_NEWNET) != 0 && ::unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0)
        return;
    ifreq loopback{{"lo"}, {}};
    loopback.ifr_flags = IFF_UP;
    ::ioctl(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0), SIOCSIFFLAGS, &loopback);
}

// A record of bus 2, message 264 with 2300 1/min in data bytes 4 and 5.
static QByteArray match(int offset) {
    return QByteArray::fromHex("02080108" + QByteArray::number(0x10000 + offset, 16).mid(1) + "a0a1a2a3fc08a6a7");
}

static QByteArray datagram(quint32 time, quint16 count, const QByteArray& records) {
    const QByteArray numbers = QString("%1%2").arg(time, 8, 16, QChar('0')).arg(count, 4, 16, QChar('0')).toLatin1();
    return QByteArray::fromHex("c0c1c2c3" + numbers + "ffff") + records;
}

class TestNvhCanEth : public QObject {
    Q_OBJECT

    QStringList mLog;
    QTemporaryDir mDirectory;
    QString mFile = mDirectory.filePath("can.txt");
    QUdpSocket mGateway;
    Datagrams mAcks = {kAck};  // what the gateway answers the first request with
    Datagrams mFrames;         // what it forwards then
    Datagrams mRequests;
    QList<qint64> mRequestTimes;  // ms from the run's start
    QElapsedTimer mClock;
    std::unique_ptr<NvhCanEth> mClient;
    std::unique_ptr<QThread> mThread;
    QStringList mEvents;

    void start(const QString& file) {
        mThread = std::make_unique<QThread>();
        mClient = std::make_unique<NvhCanEth>(2, 264, qPrintable(file));
        mClient->moveToThread(mThread.get());
        connect(mThread.get(), &QThread::started, mClient.get(), &NvhCanEth::startLogging);
        connect(mClient.get(), &NvhCanEth::acknowledged, this, [this] { mEvents << "acknowledged"; });
        connect(mClient.get(), &NvhCanEth::ackFailed, this, [this] { mEvents << "ackFailed"; });
        connect(mClient.get(), &NvhCanEth::finished, this, [this] { mEvents << "finished"; });
        connect(mThread.get(), &QThread::finished, this, [this] { mEvents << "ended"; });
        loggerRunning = true;
        mClock.start();
        mThread->start();
    }

    void hear() {
        while (mGateway.hasPendingDatagrams()) {
            QByteArray request(int(mGateway.pendingDatagramSize()), '\0');
            mGateway.readDatagram(request.data(), request.size());
            mRequestTimes << mClock.elapsed();
            mRequests << request;
            for (int i = 0; mRequests.size() == 1 && i < mAcks.size(); ++i)
                send(canEth::kAckPort, mAcks[i]);
            for (int i = 0; mRequests.size() == 1 && i < mFrames.size(); ++i)
                send(canEth::kDataPort, mFrames[i]);
        }
    }

    void send(quint16 port, const QByteArray& bytes) { mGateway.writeDatagram(bytes, QHostAddress::LocalHost, port); }

    static bool isFree(quint16 port) {
        return QUdpSocket().bind(QHostAddress::AnyIPv4, port, QAbstractSocket::DontShareAddress);
    }

private slots:
    void initTestCase() {
        Logger::setOutput([this](const QObject*, const QString& text, const QString& level) {
            QMetaObject::invokeMethod(this, [=, this] { mLog << level + ' ' + text; });
        });
        RuntimeEnv::instance()->setGatewayAddress(QHostAddress::LocalHost);
        QVERIFY(mGateway.bind(QHostAddress::LocalHost, canEth::kGatewayPort));
        connect(&mGateway, &QUdpSocket::readyRead, this, &TestNvhCanEth::hear);
    }

    void cleanup() {
        loggerRunning = false;
        send(canEth::kDataPort, "wake");
        if (mThread)
            mThread->wait();
        QCoreApplication::sendPostedEvents();
        hear();
        QVERIFY(!mThread || (mEvents.endsWith("ended") && mRequests.endsWith(kStop)));
        mClient.reset();
        mThread.reset();
        mAcks = {kAck};
        mFrames = mRequests = {};
        mEvents = mLog = {};
        mRequestTimes = {};
        QFile::remove(mFile);
    }

    void asksTwelveTimes() {
        mAcks.clear();
        start(mFile);
        QTRY_COMPARE_WITH_TIMEOUT(mEvents, kFailedRun, 15000);
        QTRY_COMPARE(mRequests, Datagrams(12, kStart) + Datagrams(2, kStop));
        // Seven receives of half a second before the first repetition, one before each after it, none after the last.
        for (int i = 1; i <= 11; ++i)
            QVERIFY2(qAbs(mRequestTimes[i] - mRequestTimes[0] - (3000 + 500 * i)) < 500,
                     qPrintable(QString::number(i)));
        QVERIFY(mRequestTimes.last() - mRequestTimes[11] < 400);
        QCOMPARE(mLog.filter("Unable"), QStringList("ERROR Unable to Recv ACK!! "));
        QCOMPARE(mLog.filter("state: 0"), QStringList(2, "INFO \tcmd: 11 state: 0 bus: 2 id: 264 BYTES: 8 "));
    }

    void checksAcknowledgements_data() {
        const auto row = columns<int, QByteArray, bool>("wrongBefore", "ack", "accepted");
        row("exact", 0, kAck, true);
        row("long", 0, kAck + QByteArray(1400, 'x'), true);
        row("seventh", 6, kAck, true);
        row("last receive", kReceivesInAll - 1, kAck, true);
        row("too late", kReceivesInAll, kAck, false);
        for (const char* bytes : {"", "0000020b010201", "0000020b01030108", "0000020b01020801", "0000020b00020108",
                                  "0000000b01020108", "000000020b01020108", "8f3c77d1a05be2496610fd"})
            row(*bytes ? bytes : "empty", 0, QByteArray::fromHex(bytes), false);
    }

    void checksAcknowledgements() {
        const auto [wrongBefore, ack, accepted] = cells<int, QByteArray, bool>();
        mAcks = Datagrams(wrongBefore, kWrongAck) + Datagrams(accepted ? 1 : kReceivesInAll, ack);
        start(mFile);
        QTRY_COMPARE(mEvents, accepted ? QStringList("acknowledged") : kFailedRun);
        const int asked = accepted ? 1 + qMax(0, wrongBefore - 6) : 12;
        QTRY_COMPARE(mRequests, Datagrams(asked, kStart) + Datagrams(accepted ? 0 : 2, kStop));
        QCOMPARE(mLog.filter("INFO ACK Received! ").size(), accepted ? 1 : 0);
    }

    void wantsAWholeAcknowledgement() {
        const char ack[] = "\0\0\x02\x0b\1\2\0";
        QCOMPARE(canEth::decodeAcknowledgement(std::as_bytes(std::span(ack, 8))), canEth::Forwarding({1, 2, 0}));
        QVERIFY(!canEth::decodeAcknowledgement(std::as_bytes(std::span(ack, 7))));
    }

    void logsFrames_data() {
        const auto row = columns<Datagrams, QByteArray>("datagrams", "lines");
        row("bytes", {QByteArray::fromHex("ffffffff 00000064 0001 ffff  02 08 0108 04d2 00112233fc086677")},
            "1234,2300\n");
        row("others",
            {QByteArray::fromHex("00000000 00000009 0005 0000  01 08 0108 0001 a0a1a2a3fc08a6a7  02 08 0108 0002 "
                                 "0000000000000000  02 08 0109 0003 a0a1a2a3fc08a6a7  02 08 0801 0004 "
                                 "a0a1a2a3fc08a6a7  02 08 0108 0005 00000000ffff0000")},
            "2,0\n5,65535\n");
        row("none sets base", {datagram(1000, 0, match(1)), datagram(1010, 1, match(5))}, "15,2300\n");
        row("count too large", {datagram(9, 65535, match(1) + match(2) + match(3).chopped(1))}, "1,2300\n2,2300\n");
        row("stale", {datagram(9, 2, match(1) + match(2)), datagram(9, 2, match(3))}, "1,2300\n2,2300\n3,2300\n");
        row("count too small", {datagram(9, 1, match(1) + match(2))}, "1,2300\n");
        row("wrap", {datagram(0xFFFFFFF0, 1, match(1)), datagram(0x10, 1, match(2))}, "1,2300\n34,2300\n");
        row("base 0", {datagram(0, 1, match(7)), datagram(500, 1, match(7)), datagram(600, 1, match(7))},
            "7,2300\n7,2300\n107,2300\n");
    }

    void logsFrames() {
        const auto [datagrams, lines] = cells<Datagrams, QByteArray>();
        mFrames = datagrams;
        start(mFile);
        QTRY_COMPARE(readFile(mFile), lines);
    }

    void reportsSilenceOnce() {
        const QString silence = "ERROR recvfrom() returned  -1  with error:  Resource temporarily unavailable ";
        start(mFile);
        QTRY_COMPARE(mLog.filter("recvfrom"), QStringList(silence));
        // What is too short for a header takes the same way out.
        for (const QByteArray& bytes : {QByteArray(), QByteArray(11, '\0'), datagram(9, 1, match(1))})
            send(canEth::kDataPort, bytes);
        QTRY_COMPARE(readFile(mFile), "1,2300\n");
        QCOMPARE(mLog.filter("recvfrom"), QStringList(silence));
    }

    void reportsLostLines() {
        start(mFile);
        QTRY_COMPARE(mEvents, QStringList("acknowledged"));
        QVERIFY(QFile::remove(mFile) && QDir().mkdir(mFile));
        send(canEth::kDataPort, datagram(9, 2, match(1) + match(2)));
        QTRY_COMPARE(mLog.filter("Write"), QStringList(2, "ERROR storeCanMessage: Can't Write to File! "));
        QVERIFY(QDir().rmdir(mFile));
        send(canEth::kDataPort, datagram(9, 1, match(3)));
        QTRY_COMPARE(readFile(mFile), "3,2300\n");
        QCOMPARE(mClient->framesLost(), quint64(2));
    }

    void staysIdle() {
        NvhCanEth(2, 264, qPrintable(mFile)).startLogging();
        QCOMPARE(mLog, QStringList({"INFO startLogging ", "INFO \t called when loggerRunning = false "}));
        QVERIFY(mRequests.isEmpty() && !QFile::exists(mFile));
    }

    void reportsWhatCannotBeBound() {
        auto client = std::make_unique<NvhCanEth>(2, 264, qPrintable(mFile));
        QUdpSocket other;
        QVERIFY(other.bind(QHostAddress::AnyIPv4, canEth::kAckPort, QAbstractSocket::DontShareAddress));
        client->initSockets();
        QVERIFY(client->fillSocketStructures());
        QCOMPARE(mLog, QStringList("ERROR Ack Bind Failed!   98 Address already in use "));
        QVERIFY(!isFree(canEth::kDataPort));
        client.reset();
        QVERIFY(isFree(canEth::kDataPort));
    }

    void runsFromTheCommandLine_data() {
        const auto row = columns<QByteArray, int, QString>("ack", "status", "lastLine");
        row("--bus 2 --id 264 --file FILE --seconds 1", kAck, 0, "logged 2 frames in 1\\.\\d s");
        row("--bus 2 --id 0x108 --file FILE", kAck, 0, "logged 2 frames in 0\\.\\d s");
        row("--bus 2 --id 264 --file FILE", kWrongAck, 1, "the gateway at 127.0.0.1 did not acknowledge");
        row("--bus 2 --id 264 --file /", kAck, 1, "/: Is a directory");
        row("--bus 2 --id 264 --file /dev/full --seconds 1", kAck, 0, "2 frames could not be written to /dev/full");
        row("--bus 256 --id 1 --file FILE", kAck, 2, "--bus: \"256\" is not a whole number from 0 to 255");
        for (const char* id : {"65536", "0x10000", "-1", "108h", "0x"})
            row(qPrintable(QString("--bus 2 --file FILE --id %1").arg(id)), kAck, 2,
                QString("--id: \"%1\" is not a whole number from 0 to 65535, decimal or 0x…").arg(id));
        row("--bus 2 --id 1", kAck, 2, "--file: no file is named");
        row("--bus 2 --id 1 --file FILE --seconds 0", kAck, 2,
            "--seconds: \"0\" is not a whole number from 1 to 86400");
    }

    void runsFromTheCommandLine() {
        const auto [ack, status, lastLine] = cells<QByteArray, int, QString>();
        const QString arguments = QString(QTest::currentDataTag()).replace("FILE", mFile);
        mAcks = Datagrams(kReceivesInAll, ack);
        mFrames = {datagram(9, 2, match(1) + match(2))};
        QProcess tool;
        tool.start(NVH_BIN_DIR "/nvh-tool", QStringList("can-log") + arguments.split(' '));
        if (status == 0 && arguments.contains(mFile))
            QTRY_COMPARE(readFile(mFile), "1,2300\n2,2300\n");
        if (status == 0 && !arguments.contains("--seconds"))
            ::kill(pid_t(tool.processId()), SIGINT);
        QTRY_COMPARE(tool.state(), QProcess::NotRunning);
        const QString said = tool.readAllStandardError();
        QCOMPARE(tool.exitCode(), status);
        QVERIFY2(QRegularExpression("nvh-tool: " + lastLine + "\n$").match(said).hasMatch(), qPrintable(said));
        QVERIFY(status < 2 || said.count('\n') == 1);
        QTRY_COMPARE(mRequests.mid(mRequests.size() - 2), Datagrams(status < 2 ? 2 : 0, kStop));
    }
};

int main(int argc, char** argv) {
    enterOwnNetwork();
    QCoreApplication application(argc, argv);
    TestNvhCanEth test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_nvhcaneth.moc"
