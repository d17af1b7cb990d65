// The factory's data server as its clients meet it: the real program on a free port, curl as the recorder starts it,
// and raw sockets for what curl would never send.

#include "tests/bench/ProgramRun.h"
#include "tests/support/Rows.h"

#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>

#include <memory>
#include <sys/socket.h>

namespace {

const QString kName = QStringLiteral("VIN00000000000001-Base-v3.0_pass-CAR_65MPH-1500000000.tgz");

QByteArray noise(int size) {
    QByteArray bytes(size, Qt::Uninitialized);
    quint32 state = quint32(size);
    for (char& byte : bytes) {
        state = state * 1664525U + 1013904223U;
        byte = char(state >> 24U);
    }
    return bytes;
}

QByteArray part(const QByteArray& disposition, const QByteArray& body) {
    return "--XX\r\nContent-Disposition: form-data; " + disposition + "\r\n\r\n" + body + "\r\n";
}

QByteArray post(const QByteArray& path, const QByteArray& body, const QByteArray& type, qint64 length) {
    return "POST " + path + " HTTP/1.1\r\nHost: x\r\nContent-Type: " + type +
           "\r\nContent-Length: " + QByteArray::number(length) + "\r\n\r\n" + body;
}

}  // namespace

class TestFactoryServer : public QObject {
    Q_OBJECT

private slots:
    void init() { mPlace = std::make_unique<QTemporaryDir>(); }

    void cleanup() {
        if (mServer) {
            mServer->terminate();
            QVERIFY(mServer->waitForFinished(5000));
            QCOMPARE(mServer->exitStatus(), QProcess::NormalExit);
            QCOMPARE(mServer->exitCode(), 0);
            mServer.reset();
        }
        mPlace.reset();
    }

    void takesAndRegistersAPackage() {
        start();
        QVERIFY(QDir(mPlace->path()).mkdir("tmp"));
        QByteArray wav = "RIFF____WAVEfmt " + QByteArray(28, '\0') + QByteArray(768'000 / 2, 'x');
        qToLittleEndian<quint16>(8, wav.data() + 22);
        qToLittleEndian<quint32>(48'000, wav.data() + 24);
        qToLittleEndian<quint32>(768'000, wav.data() + 28);
        writeFile(file("tmp/recording.wav"), wav);
        writeFile(file("tmp/nvh-rpm.txt"), "0 500\n");
        QCOMPARE(ProgramRun::of("tar", {"-czf", kName, "tmp/recording.wav", "tmp/nvh-rpm.txt"}, mPlace->path()).status,
                 0);

        const ProgramRun sent = upload(kName);
        QVERIFY2(sent.output.contains("HTTP/1.1 200 OK\r\n"), sent.output.constData());
        const QString packageUrl = QString::fromUtf8(sent.output.mid(sent.output.indexOf("http://")));
        QCOMPARE(packageUrl, url("/packages/" + kName));
        QCOMPARE(curl({"-sS", packageUrl}).output, readFile(file(kName)));
        QVERIFY(curl({"-sS", url("/")}).output.contains("Not registered"));

        const ProgramRun registered = registerUrl(packageUrl + " \r\n");
        QVERIFY2(registered.output.startsWith("HTTP/1.1 201"), registered.output.constData());
        const QJsonObject answer =
            QJsonDocument::fromJson(registered.output.mid(registered.output.indexOf('{'))).object();
        const QString feedback = answer.value("VDT Feedback").toString();
        for (const char* const fact : {"VIN00000000000001", "65MPH", "pass", "2 files", "0.5 s, 8 channels, 48000 Hz"})
            QVERIFY2(feedback.contains(fact), qPrintable(feedback));
        QCOMPARE(answer.value("bytes").toInt(), int(QFileInfo(file(kName)).size()));

        for (const char* const unknown : {"/packages/b.tgz", "/packages/../store/", "/pack"})
            QVERIFY(registerUrl(url(unknown)).output.startsWith("HTTP/1.1 404"));
        QVERIFY(registerUrl(kName).output.startsWith("HTTP/1.1 400"));

        const QByteArray page = curl({"-sS", url("/")}).output;
        QVERIFY(page.contains("0.5 s, 8 channels") && page.contains("href=\"/packages/" + kName.toUtf8() + '"'));
    }

    void keepsEveryArchiveOfAName() {
        start();
        writeFile(file("one"), noise(70'000));
        writeFile(file("two"), noise(70'001));
        const auto uploadAs = [this](const QString& from, const QString& name) {
            const QByteArray answer =
                curl({"-sS", "-F", "data=@" + from + ";filename=" + name, url("/vdt/upload")}).output;
            return QString::fromUtf8(answer).section('/', -1);
        };
        QCOMPARE(uploadAs("one", "a.tgz"), "a.tgz");
        QCOMPARE(uploadAs("one", "a.tgz"), "a.tgz");
        QCOMPARE(uploadAs("two", "a.tgz"), "a.2.tgz");
        QCOMPARE(uploadAs("one", "a.tgz"), "a.tgz");
        QCOMPARE(uploadAs("two", "../../.b <i>.tgz"), "b__i_.tgz");
        QCOMPARE(stored(), QStringList({"a.2.tgz", "a.tgz", "b__i_.tgz"}));
        QCOMPARE(readFile(file("store/a.tgz")), readFile(file("one")));
        QCOMPARE(readFile(file("store/a.2.tgz")), readFile(file("two")));
    }

    void storesNothingOfAnUploadThatFails_data() {
        const auto row = columns<QByteArray, QByteArray>("request", "status");
        const QByteArray form = "multipart/form-data; boundary=XX";
        const auto fails = [&](const char* name, const QByteArray& body, const QByteArray& status, qint64 missing = 0) {
            row(name, post("/vdt/upload", body, form, body.size() + missing), status);
        };
        const QByteArray data = part(R"(name="data"; filename="a.tgz")", noise(5000));
        fails("connection lost", data, "400", 100'000);
        fails("no closing boundary", data, "400");
        fails("no field data", part(R"(name="other"; filename="a.tgz")", noise(5000)) + "--XX--\r\n", "400");
        fails("data twice", data + data + "--XX--\r\n", "400");
        fails("endless file name", part("name=\"data\"; filename=\"" + QByteArray(2'000'000, 'a') + '"', "x"), "400");
        fails("larger than allowed", part(R"(name="data"; filename="a.tgz")", noise(1'100'000)) + "--XX--\r\n", "413");
    }

    void storesNothingOfAnUploadThatFails() {
        const auto [request, status] = cells<QByteArray, QByteArray>();
        start({"--limit-mb", "1"});
        const QByteArray answer = exchange(request);
        QVERIFY2(answer.startsWith("HTTP/1.1 " + status), answer.constData());
        QVERIFY(!answer.contains("http://"));
        QCOMPARE(stored(), QStringList());
    }

    void survivesAFullDisk() {
        start({}, "ulimit -f 128");
        writeFile(file("big.tgz"), noise(1'000'000));
        writeFile(file("small.tgz"), noise(10'000));
        const ProgramRun refused = upload("big.tgz");
        QVERIFY2(refused.output.contains("HTTP/1.1 507"), (refused.output + refused.errors).constData());
        QCOMPARE(stored(), QStringList());
        QVERIFY(upload("small.tgz").output.contains("HTTP/1.1 200 OK"));
        QCOMPARE(stored(), QStringList("small.tgz"));
    }

    void failsAsAskedFor_data() {
        const auto row = columns<int, QString>("curlStatus", "answer");
        row("upload=refuse", 52, "^$");
        row("upload=delay:300", 0, "^HTTP/1.1 200 OK.*http://");
        row("upload=cut", 18, "^HTTP/1.1 200 OK((?!http://).)*$");
        row("upload=cut:11", 52, "^$");
        row("upload=garbage", 1, "^$");
        row("upload=bad-body", 0, "^HTTP/1.1 200 OK.*http://((?!tgz).)*$");
        row("upload=status:503", 0, "^HTTP/1.1 503");
        row("upload=no-url", 0, "^HTTP/1.1 200 OK((?!http://).)*Stored\\.$");
        row("sonvara_files=cut", 18, "^HTTP/1.1 201 ((?!\\}).)*$");
        row("sonvara_files=bad-body", 0, "^HTTP/1.1 201 .*VDT Feedback((?!\\}).)*$");
        row("static=garbage", 1, "^$");
    }

    // Each fault once, set while the server runs; the request after it is served as if nothing had been.
    void failsAsAskedFor() {
        const QString endpoint = QString(QTest::currentDataTag()).section('=', 0, 0);
        const QString fault = QString(QTest::currentDataTag()).section('=', 1);
        const auto [curlStatus, answer] = cells<int, QString>();
        start();
        writeFile(file("a.tgz"), noise(3000));
        writeFile(file("b.tgz"), noise(3001));
        QCOMPARE(upload("a.tgz").status, 0);
        const auto ask = [&] {
            if (endpoint == "upload")
                return upload("b.tgz");
            return endpoint == "static" ? curl({"-i", "-sS", url("/vdt/static")}) : registerUrl(url("/packages/a.tgz"));
        };
        const QJsonObject setting{{"endpoint", endpoint}, {"fault", fault}, {"times", 1}};
        const QByteArray set = QJsonDocument(setting).toJson(QJsonDocument::Compact);
        QVERIFY(
            curl({"-i", "-sS", "-d", QString::fromUtf8(set), url("/bench/fault")}).output.startsWith("HTTP/1.1 200"));

        QElapsedTimer clock;
        clock.start();
        const ProgramRun spoilt = ask();
        QVERIFY(!fault.startsWith("delay") || clock.elapsed() >= 300);
        QCOMPARE(spoilt.status, curlStatus);
        const QRegularExpression wanted(answer, QRegularExpression::DotMatchesEverythingOption);
        QVERIFY2(wanted.match(QString::fromUtf8(spoilt.output)).hasMatch(), spoilt.output.constData());
        const bool refused = fault == "refuse" || fault == "status:503";
        QCOMPARE(stored().contains("b.tgz"), endpoint == "upload" && !refused);

        const ProgramRun sound = ask();
        QCOMPARE(sound.status, 0);
        QVERIFY(sound.output.startsWith(endpoint == "sonvara_files" ? "HTTP/1.1 201" : "HTTP/1.1 200 OK"));
        QVERIFY(endpoint != "static" || !QJsonDocument::fromJson(sound.output.mid(sound.output.indexOf('{'))).isNull());
    }

    void needsNoMoreMemoryForALongRecording() {
#ifdef __SANITIZE_ADDRESS__
        QSKIP("the sanitizer holds freed memory back");
#endif
        start();
        const auto highWater = [this] {
            const auto status =
                QString::fromLatin1(readFile(QStringLiteral("/proc/%1/status").arg(mServer->processId())));
            return QRegularExpression("VmHWM:\\s+(\\d+) kB").match(status).captured(1).toInt();
        };
        writeFile(file("short.tgz"), noise(4'000'000));
        writeFile(file("long.tgz"), noise(46'000'000));
        QVERIFY(upload("short.tgz").output.contains("HTTP/1.1 200 OK"));
        const int before = highWater();
        QVERIFY(before > 0);
        QVERIFY(upload("long.tgz").output.contains("HTTP/1.1 200 OK"));
        const QByteArray registered = registerUrl(url("/packages/long.tgz")).output;
        QVERIFY(registered.startsWith("HTTP/1.1 201") && registered.contains("Damaged: "));
        QCOMPARE(curl({"-sS", url("/packages/long.tgz")}).output, readFile(file("long.tgz")));
        QVERIFY2(highWater() - before < 2000, qPrintable(QString::number(highWater() - before)));
    }

    void sharesItsStoreWithNobody() {
        QVERIFY(QDir().mkpath(file("store/.incoming")));
        writeFile(file("store/.incoming/half"), "left by a server that was killed");
        start();
        QCOMPARE(stored(), QStringList());
        const ProgramRun second =
            ProgramRun::of(NVH_BIN_DIR "/factory-server", {"--port", "0", "--store", file("store")});
        QCOMPARE(second.status, 2);
        QVERIFY(second.errors.contains("in use by another server"));
    }

private:
    void start(const QStringList& more = {}, const QString& shellPrefix = QString()) {
        mServer = std::make_unique<QProcess>();
        QStringList arguments{NVH_BIN_DIR "/factory-server", "--port", "0", "--store", file("store")};
        arguments += more;
        if (!shellPrefix.isEmpty())
            arguments = QStringList{"sh", "-c", shellPrefix + R"(; exec "$@")", "sh"} + arguments;
        mServer->start(arguments.takeFirst(), arguments);
        QTRY_VERIFY_WITH_TIMEOUT(mServer->canReadLine(), 10'000);
        const auto line = QString::fromLatin1(mServer->readLine());
        const auto match =
            QRegularExpression("^factory-server listens on http://127\\.0\\.0\\.1:(\\d+)/\n$").match(line);
        QVERIFY2(match.hasMatch(), qPrintable(line));
        mPort = match.captured(1).toUShort();
    }

    ProgramRun curl(const QStringList& arguments) const {
        return ProgramRun::of("curl", arguments, mPlace->path());
    }

    ProgramRun upload(const QString& path) const {
        return curl({"-i", "-sS", "-X", "POST", "--connect-timeout", "10", "-m", "60", "-H",
                     "Content-Type: multipart/form-data", "-F", "data=@" + path, url("/vdt/upload")});
    }

    ProgramRun registerUrl(const QString& packageUrl) const {
        const QByteArray payload = QJsonDocument(QJsonObject{{"url", packageUrl}}).toJson(QJsonDocument::Compact);
        return curl({"-i", "-sS", "-X", "POST", "-m", "20", "-H", "Content-Type: application/json", "-d",
                     QString::fromUtf8(payload), url("/vdt/sonvara_files")});
    }

    // Sends the bytes as they are, says no more, and reads until the server closes.
    QByteArray exchange(const QByteArray& request) const {
        QTcpSocket socket;
        socket.connectToHost("127.0.0.1", mPort);
        if (!socket.waitForConnected(5000))
            return {};
        socket.write(request);
        while (socket.bytesToWrite() > 0 && socket.waitForBytesWritten(5000)) {
        }
        ::shutdown(int(socket.socketDescriptor()), SHUT_WR);
        QByteArray answer;
        while (socket.waitForReadyRead(5000) || socket.bytesAvailable() > 0)
            answer += socket.readAll();
        return answer;
    }

    QString url(const QString& path) const {
        return QStringLiteral("http://127.0.0.1:%1%2").arg(mPort).arg(path);
    }
    QString file(const QString& name) const {
        return mPlace->filePath(name);
    }

    // Everything that lies in the store, what is still on its way in included.
    QStringList stored() const {
        return QDir(file("store")).entryList(QDir::Files | QDir::Hidden, QDir::Name) +
               QDir(file("store/.incoming")).entryList(QDir::Files | QDir::Hidden);
    }

    std::unique_ptr<QTemporaryDir> mPlace;
    std::unique_ptr<QProcess> mServer;
    quint16 mPort = 0;
};

QTEST_GUILESS_MAIN(TestFactoryServer)
#include "tst_factoryserver.moc"
