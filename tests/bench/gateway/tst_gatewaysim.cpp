// gateway-sim as a client meets it: the real program, sockets of the test's own, and bytes spelled out.

#include "tests/bench/ProgramRun.h"
#include "tests/support/Rows.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QUdpSocket>
#include <QtEndian>
#include <QtTest>

#include <memory>

// Bus 1, id 0x108.
const QByteArray kStart = "0000000b01010108";
const QByteArray kStop = "0000000b00010108";
const QByteArray kStarted = "0000020b01010108";
const QByteArray kStopped = "0000020b00010108";

class TestGatewaySim : public QObject {
    Q_OBJECT

private slots:
    void init() {
        for (QUdpSocket* const socket : {&mControl, &mAck, &mData})
            QVERIFY(socket->bind(QHostAddress::LocalHost));
    }

    void cleanup() {
        if (mGateway)
            end();
        for (QUdpSocket* const socket : {&mControl, &mAck, &mData})
            socket->close();
    }

    void spellsTheWire() {
        start("--header-start 0x01020304 --collect 100 --log FILE",
              "(10.0000) can1 108#1122334455667788\n(10.0021) can0 108#FF\n"
              "(10.0042) can1 108#ABCD\n(10.0043) can1 109#FF\n");
        send(kStart);
        QCOMPARE(receive(mAck), kStarted);
        QCOMPARE(receive(mData), QByteArray("0000020c 01020304 0002 0000"
                                            "01 08 0108 0000 1122334455667788"
                                            "01 02 0108 0004 abcd000000000000")
                                     .replace(" ", ""));
        send(kStop);
        QCOMPARE(receive(mAck), kStopped);
        QCOMPARE(end(), "gateway-sim: requests 2, acknowledgements 2, datagrams 1, frames sent 2");
    }

    void forwardsWhatIsAskedFor_data() {
        const auto row = columns<QString>("options");
        row("all", "--rate 0 --all");
        row("quickly, few at a time", "--rate 20000 --frames-per-datagram 7");
        row("as recorded, but faster", "--speed 20");
    }

    void forwardsWhatIsAskedFor() {
        QFETCH(QString, options);
        constexpr quint32 kHeaderStart = 4'294'966'000;  // wraps on the way
        QByteArray log;
        QByteArrayList expected;
        QRandomGenerator random(7);
        for (quint32 i = 0, ms = 0; i < 8'000; ++i, ms += random.bounded(3U)) {
            const quint32 bus = random.bounded(2U);
            const quint32 id = 0x107 + random.bounded(3U);
            const QByteArray data = QByteArray::number(random.generate64() | (1ULL << 63U), 16);
            log += QString::asprintf("(%u.%03u) can%u %x#%s\n", 1436509052 + ms / 1000, ms % 1000, bus, id, data.data())
                       .toLatin1();
            if (options.endsWith("all") || (bus == 1 && id == 0x108))
                expected += QString::asprintf("%u %02x080%x%s", kHeaderStart + ms, bus, id, data.data()).toLatin1();
        }
        start(options + " --header-start 4294966000 --log FILE", log);
        send(kStart);
        QCOMPARE(receive(mAck), kStarted);
        QCOMPARE(frames(int(expected.size())), expected);
        QVERIFY(end().endsWith(" frames sent " + QByteArray::number(expected.size())));
    }

    void sendsAMotorSpeed() {
        const char* const trace =
            "t_s,VAPI_motorRPM\n0,invalid\n0.1,1000\n0.2,2300.6\n0.3,-500\n0.4,invalid\n0.6,70000\n";
        start("--trace FILE --period 150 --rate 0", trace);
        send(kStart);
        QCOMPARE(frames(3), QByteArrayList({"1150 010801080000000072060000", "1300 0108010800000000f4010000",
                                            "1600 0108010800000000ffff0000"}));
        end();
        start("--trace FILE --period 300 --rate 0 --bus 2 --id 0x345", trace);
        send(kStart);
        send("0000000b01020345");
        QCOMPARE(frames(2), QByteArrayList({"1300 0208034500000000f4010000", "1600 0208034500000000ffff0000"}));
    }

    // What comes of the good datagram G, or of S, the beginning of one; a word for how it comes.
    void suffersFaults_data() {
        const auto row = columns<QString>("effect");
        row("ack-lose", "^$");
        row("ack-wrong-state", "^0000020b00010108$");
        row("ack-wrong-bus", "^0000020b01(?!01)..0108$");
        row("ack-wrong-id", "^0000020b0101(?!0108)....$");
        row("ack-garble", "^[0-9a-f]{16}$");
        row("ack-truncate", "^S$");
        row("ack-lengthen", "^G(..)+$");
        row("ack-duplicate", "^G G$");
        row("ack-delay", "^late G$");
        row("data-lose", "^$");
        row("data-count", "^0000020c000003e8(?!000[01])....00000103010800000102030000000000$");
        row("data-garble", "^[0-9a-f]{52}$");
        row("data-truncate", "^S$");
        row("data-duplicate", "^G G$");
        row("data-delay", "^late G$");
    }

    void suffersFaults() {
        QFETCH(QString, effect);
        const QString fault = QTest::currentDataTag();
        const bool ofAck = fault.startsWith("ack-");
        const QByteArray good = ofAck ? kStarted : "0000020c000003e8000100000103010800000102030000000000";
        start("--collect 0 --delay 300 --log FILE --fault " + fault + "=1", "(1.0) can1 108#010203\n");
        QElapsedTimer clock;
        clock.start();
        send(kStart);
        // What is not struck comes as ever, and shows that the request has been dealt with.
        QVERIFY(receive(ofAck ? mData : mAck) != "nothing");
        QByteArrayList seen;
        QUdpSocket& struck = ofAck ? mAck : mData;
        const bool delayed = fault.endsWith("-delay");
        for (QByteArray next = receive(struck, delayed ? 5000 : 200); next != "nothing"; next = receive(struck, 200)) {
            if (next.startsWith(good))
                next.replace(0, good.size(), "G");
            seen +=
                (delayed && clock.elapsed() >= 300 ? "late " : "") + (good.startsWith(next) ? QByteArray("S") : next);
        }
        QVERIFY2(QString(seen.join(' ')).contains(QRegularExpression(effect)), seen.join(' ').constData());
        QVERIFY(end().endsWith(", " + fault.toLatin1() + " 1"));
    }

    void survivesAnything() {
        start("--log FILE", "(1.0) can1 108#\n");
        for (const char* const torn :
             {"", "0000000b010101", "0000000b0101010800", "0000020b01010108", "0000000b02010108"})
            send(torn);
        QRandomGenerator random(3);
        for (int i = 0; i < 100; ++i) {
            QByteArray bytes(int(random.bounded(i == 50 ? 65'000 : 30)), '\0');
            std::generate(bytes.begin(), bytes.end(), [&random] { return char(random.generate()); });
            send(mControl, bytes);
        }
        send(kStop);
        QCOMPARE(receive(mAck), kStopped);
        // More messages than it keeps for one client.
        for (int id = 256; id < 356; ++id)
            send("0000000b01020" + QByteArray::number(id, 16));
        for (int i = 0; i < 64; ++i)
            QCOMPARE(receive(mAck).left(12), "0000020b0102");
        send(kStop);
        QCOMPARE(receive(mAck), kStopped);
        QCOMPARE(end(), "gateway-sim: requests 207, refused 141, acknowledgements 66, datagrams 0, frames sent 0");
    }

private:
    // FILE among the arguments stands for a file of that content.
    void start(QString arguments, const QByteArray& source) {
        arguments.replace("FILE", writeFile(mPlace.filePath("source"), source));
        arguments += QString(" --port 0 --ack-port %1 --data-port %2").arg(mAck.localPort()).arg(mData.localPort());
        mGateway = std::make_unique<QProcess>();
        mGateway->start(NVH_BIN_DIR "/gateway-sim", arguments.split(' '));
        QTRY_VERIFY_WITH_TIMEOUT(mGateway->canReadLine(), 10'000);
        const QByteArray line = mGateway->readLine();
        QVERIFY2(line.startsWith("gateway-sim listens on 127.0.0.1:"), line.constData());
        mPort = line.split(':').last().split(',').first().toUShort();
    }

    // The last line that it says.
    QByteArray end() {
        const auto gateway = std::exchange(mGateway, nullptr);
        gateway->terminate();
        if (!gateway->waitForFinished(5000) || gateway->exitStatus() != QProcess::NormalExit ||
            gateway->exitCode() != 0)
            return "no clean end";
        return gateway->readAllStandardOutput().trimmed().split('\n').last();
    }

    void send(const QByteArray& hex) { send(mControl, QByteArray::fromHex(hex)); }
    void send(QUdpSocket& from, const QByteArray& bytes) { from.writeDatagram(bytes, QHostAddress::LocalHost, mPort); }

    // In hex; "nothing" if nothing comes.
    static QByteArray receive(QUdpSocket& socket, int withinMs = 5000) {
        if (!socket.hasPendingDatagrams() && !socket.waitForReadyRead(withinMs))
            return "nothing";
        QByteArray bytes(int(socket.pendingDatagramSize()), '\0');
        socket.readDatagram(bytes.data(), bytes.size());
        return bytes.toHex();
    }

    // "TIME RECORD" in hex, the record without its time; of as many datagrams as it takes, fewer if no more come.
    QByteArrayList frames(int count) {
        QByteArrayList found;
        while (found.size() < count) {
            const QByteArray bytes = QByteArray::fromHex(receive(mData));
            if (bytes.size() < 12 || bytes.size() != 12 + 14 * qFromBigEndian<quint16>(bytes.data() + 8))
                break;
            for (int at = 12; at < bytes.size(); at += 14) {
                const quint32 header = qFromBigEndian<quint32>(bytes.data() + 4);
                const quint32 time = header + qFromBigEndian<quint16>(bytes.data() + at + 4);
                found += QByteArray::number(time) + ' ' + (bytes.mid(at, 4) + bytes.mid(at + 6, 8)).toHex();
            }
        }
        return found;
    }

    QTemporaryDir mPlace;
    std::unique_ptr<QProcess> mGateway;
    QUdpSocket mControl;
    QUdpSocket mAck;
    QUdpSocket mData;
    quint16 mPort = 0;
};

QTEST_GUILESS_MAIN(TestGatewaySim)
#include "tst_gatewaysim.moc"
