// The factory's data server as its clients meet it: the real program on a free port, curl as the recorder starts it,
// and raw sockets for what curl would never send.

#include "tests/bench/ProgramRun.h"

#include <QDir>
#include <QFile>
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

QByteArray content(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

void write(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

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
    void init();
    void cleanup();

    void takesAndRegistersAPackage();
    void keepsEveryArchiveOfAName();
    void storesNothingOfAnUploadThatFails_data();
    void storesNothingOfAnUploadThatFails();
    void survivesAFullDisk();
    void judgesMetadata_data();
    void judgesMetadata();
    void failsAsAskedFor_data();
    void failsAsAskedFor();
    void needsNoMoreMemoryForALongRecording();
    void sharesItsStoreWithNobody();
    void refusesUnusableArguments_data();
    void refusesUnusableArguments();
    void endsInTheMiddleOfAnAnswer();

private:
    void start(const QStringList& more = {}, const QString& shellPrefix = QString());
    ProgramRun curl(const QStringList& arguments) const { return ProgramRun::of("curl", arguments, mPlace->path()); }
    ProgramRun upload(const QString& file) const;
    ProgramRun registerUrl(const QString& url) const;
    QByteArray exchange(const QByteArray& request) const;
    QString url(const QString& path) const { return QStringLiteral("http://127.0.0.1:%1%2").arg(mPort).arg(path); }
    QString file(const QString& name) const { return mPlace->filePath(name); }
    QStringList stored() const;

    std::unique_ptr<QTemporaryDir> mPlace;
    std::unique_ptr<QProcess> mServer;
    quint16 mPort = 0;
};

void TestFactoryServer::init() {
    mPlace = std::make_unique<QTemporaryDir>();
    QVERIFY(mPlace->isValid());
}

void TestFactoryServer::cleanup() {
    if (mServer) {
        mServer->terminate();
        QVERIFY(mServer->waitForFinished(5000));
        QCOMPARE(mServer->exitStatus(), QProcess::NormalExit);
        QCOMPARE(mServer->exitCode(), 0);
        mServer.reset();
    }
    mPlace.reset();
}

void TestFactoryServer::start(const QStringList& more, const QString& shellPrefix) {
    mServer = std::make_unique<QProcess>();
    QStringList arguments{NVH_BIN_DIR "/factory-server", "--port", "0", "--store", file("store")};
    arguments += more;
    if (!shellPrefix.isEmpty())
        arguments = QStringList{"sh", "-c", shellPrefix + R"(; exec "$@")", "sh"} + arguments;
    mServer->start(arguments.takeFirst(), arguments);
    QTRY_VERIFY_WITH_TIMEOUT(mServer->canReadLine(), 10'000);
    const auto line = QString::fromLatin1(mServer->readLine());
    const auto match = QRegularExpression("^factory-server listens on http://127\\.0\\.0\\.1:(\\d+)/\n$").match(line);
    QVERIFY2(match.hasMatch(), qPrintable(line));
    mPort = match.captured(1).toUShort();
}

ProgramRun TestFactoryServer::upload(const QString& path) const {
    return curl({"-i", "-sS", "-X", "POST", "--connect-timeout", "10", "-m", "60", "-H",
                 "Content-Type: multipart/form-data", "-F", "data=@" + path, url("/vdt/upload")});
}

ProgramRun TestFactoryServer::registerUrl(const QString& packageUrl) const {
    const QByteArray payload = QJsonDocument(QJsonObject{{"url", packageUrl}}).toJson(QJsonDocument::Compact);
    return curl({"-i", "-sS", "-X", "POST", "-m", "20", "-H", "Content-Type: application/json", "-d",
                 QString::fromUtf8(payload), url("/vdt/sonvara_files")});
}

// Sends the bytes as they are, says no more, and reads until the server closes.
QByteArray TestFactoryServer::exchange(const QByteArray& request) const {
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

// Everything that lies in the store, what is still on its way in included.
QStringList TestFactoryServer::stored() const {
    return QDir(file("store")).entryList(QDir::Files | QDir::Hidden, QDir::Name) +
           QDir(file("store/.incoming")).entryList(QDir::Files | QDir::Hidden);
}

void TestFactoryServer::takesAndRegistersAPackage() {
    start();
    QVERIFY(QDir(mPlace->path()).mkdir("tmp"));
    QByteArray wav = "RIFF____WAVEfmt " + QByteArray(28, '\0') + QByteArray(768'000 / 2, 'x');
    qToLittleEndian<quint16>(8, wav.data() + 22);
    qToLittleEndian<quint32>(48'000, wav.data() + 24);
    qToLittleEndian<quint32>(768'000, wav.data() + 28);
    write(file("tmp/recording.wav"), wav);
    write(file("tmp/nvh-rpm.txt"), "0 500\n");
    QCOMPARE(ProgramRun::of("tar", {"-czf", kName, "tmp/recording.wav", "tmp/nvh-rpm.txt"}, mPlace->path()).status, 0);

    const ProgramRun sent = upload(kName);
    QVERIFY2(sent.output.contains("HTTP/1.1 200 OK\r\n"), sent.output.constData());
    const QString packageUrl = QString::fromUtf8(sent.output.mid(sent.output.indexOf("http://")));
    QCOMPARE(packageUrl, url("/packages/" + kName));
    QCOMPARE(curl({"-sS", packageUrl}).output, content(file(kName)));
    QVERIFY(curl({"-sS", url("/")}).output.contains("Not registered"));

    const ProgramRun registered = registerUrl(packageUrl + " \r\n");
    QVERIFY2(registered.output.startsWith("HTTP/1.1 201"), registered.output.constData());
    const QJsonObject answer = QJsonDocument::fromJson(registered.output.mid(registered.output.indexOf('{'))).object();
    const QString feedback = answer.value("VDT Feedback").toString();
    for (const char* const fact : {"VIN00000000000001", "65MPH", "pass", "2 files", "0.5 s, 8 channels, 48000 Hz"})
        QVERIFY2(feedback.contains(fact), qPrintable(feedback));
    QCOMPARE(answer.value("bytes").toInt(), int(QFileInfo(file(kName)).size()));

    const QByteArray page = curl({"-sS", url("/")}).output;
    QVERIFY(page.contains("0.5 s, 8 channels") && page.contains("href=\"/packages/" + kName.toUtf8() + '"'));
}

void TestFactoryServer::keepsEveryArchiveOfAName() {
    start();
    write(file("one"), noise(70'000));
    write(file("two"), noise(70'001));
    const auto uploadAs = [this](const QString& from, const QString& name) {
        const QByteArray answer = curl({"-sS", "-F", "data=@" + from + ";filename=" + name, url("/vdt/upload")}).output;
        return QString::fromUtf8(answer).section('/', -1);
    };
    QCOMPARE(uploadAs("one", "a.tgz"), "a.tgz");
    QCOMPARE(uploadAs("one", "a.tgz"), "a.tgz");
    QCOMPARE(uploadAs("two", "a.tgz"), "a.2.tgz");
    QCOMPARE(uploadAs("one", "a.tgz"), "a.tgz");
    QCOMPARE(uploadAs("two", "../../.b <i>.tgz"), "b__i_.tgz");
    QCOMPARE(stored(), QStringList({"a.2.tgz", "a.tgz", "b__i_.tgz"}));
    QCOMPARE(content(file("store/a.tgz")), content(file("one")));
    QCOMPARE(content(file("store/a.2.tgz")), content(file("two")));
}

void TestFactoryServer::storesNothingOfAnUploadThatFails_data() {
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<QByteArray>("status");
    const QByteArray form = "multipart/form-data; boundary=XX";
    const auto row = [&](const char* name, const QByteArray& body, const QByteArray& status, qint64 missing = 0) {
        QTest::newRow(name) << post("/vdt/upload", body, form, body.size() + missing) << status;
    };
    const QByteArray data = part(R"(name="data"; filename="a.tgz")", noise(5000));
    row("connection lost", data, "400", 100'000);
    row("no closing boundary", data, "400");
    row("no field data", part(R"(name="other"; filename="a.tgz")", noise(5000)) + "--XX--\r\n", "400");
    row("data is no file", part(R"(name="data")", "text") + "--XX--\r\n", "400");
    row("data twice", data + data + "--XX--\r\n", "400");
    row("endless file name", part("name=\"data\"; filename=\"" + QByteArray(2'000'000, 'a') + '"', "x"), "400");
    row("larger than allowed", part(R"(name="data"; filename="a.tgz")", noise(1'100'000)) + "--XX--\r\n", "413");
    row("another field too large", part(R"(name="other")", noise(1'100'000)) + "--XX--\r\n", "413");
    QTest::newRow("no form") << post("/vdt/upload", noise(5000), "text/plain", 5000) << QByteArray("400");
    QTest::newRow("other address") << post("/upload", data, form, data.size()) << QByteArray("404");
}

void TestFactoryServer::storesNothingOfAnUploadThatFails() {
    QFETCH(QByteArray, request);
    QFETCH(QByteArray, status);
    start({"--limit-mb", "1"});
    const QByteArray answer = exchange(request);
    QVERIFY2(answer.startsWith("HTTP/1.1 " + status), answer.constData());
    QVERIFY(!answer.contains("http://"));
    QCOMPARE(stored(), QStringList());
}

void TestFactoryServer::survivesAFullDisk() {
    start({}, "ulimit -f 128");
    write(file("big.tgz"), noise(1'000'000));
    write(file("small.tgz"), noise(10'000));
    const ProgramRun refused = upload("big.tgz");
    QVERIFY2(refused.output.contains("HTTP/1.1 507"), (refused.output + refused.errors).constData());
    QCOMPARE(stored(), QStringList());
    QVERIFY(upload("small.tgz").output.contains("HTTP/1.1 200 OK"));
    QCOMPARE(stored(), QStringList("small.tgz"));
}

void TestFactoryServer::judgesMetadata_data() {
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QByteArray>("status");
    QTest::addColumn<QByteArray>("inAnswer");
    const auto row = [](const char* name, const char* body, const char* status, const char* inAnswer) {
        QTest::newRow(name) << QByteArray(body) << QByteArray(status) << QByteArray(inAnswer);
    };
    row("stored", R"({"url": "http://127.0.0.1/packages/a.tgz"})", "201", "{\"VDT Feedback\":");
    row("no archive inside", R"({"url": "http://other/packages/a.tgz \n"})", "201", "Damaged: ");
    row("not stored", R"({"url": "http://127.0.0.1/packages/b.tgz"})", "404", "no archive");
    row("cut URL", R"({"url": "http://127.0.0.1/pack"})", "404", "no archive");
    row("out of the store", R"({"url": "http://127.0.0.1/packages/../store/a.tgz"})", "404", "no archive");
    row("no URL", R"({"url": "a.tgz"})", "400", "no http URL");
    row("list", "[1]", "400", "no JSON object");
    row("no JSON", "url=http://127.0.0.1/packages/a.tgz", "400", "no JSON object");
    row("nothing", "", "400", "no JSON object");
    QTest::newRow("endless") << '"' + QByteArray(200'000, 'a') << QByteArray("413") << QByteArray("longer");
}

void TestFactoryServer::judgesMetadata() {
    QFETCH(QByteArray, body);
    QFETCH(QByteArray, status);
    QFETCH(QByteArray, inAnswer);
    start();
    write(file("a.tgz"), "no archive at all");
    QCOMPARE(upload("a.tgz").status, 0);
    const QByteArray answer = exchange(post("/vdt/sonvara_files", body, "application/json", body.size()));
    QVERIFY2(answer.startsWith("HTTP/1.1 " + status), answer.constData());
    QVERIFY2(answer.contains(inAnswer), answer.constData());
}

void TestFactoryServer::failsAsAskedFor_data() {
    QTest::addColumn<QString>("endpoint");
    QTest::addColumn<QString>("fault");
    QTest::addColumn<int>("curlStatus");
    QTest::addColumn<QString>("answer");
    const auto row = [](const char* endpoint, const char* fault, int curlStatus, const char* answer) {
        QTest::addRow("%s=%s", endpoint, fault) << QString(endpoint) << QString(fault) << curlStatus << QString(answer);
    };
    row("upload", "refuse", 52, "^$");
    row("upload", "delay:300", 0, "^HTTP/1.1 200 OK.*http://");
    row("upload", "cut", 18, "^HTTP/1.1 200 OK((?!http://).)*$");
    row("upload", "cut:11", 52, "^$");
    row("upload", "garbage", 1, "^$");
    row("upload", "bad-body", 0, "^HTTP/1.1 200 OK.*http://((?!tgz).)*$");
    row("upload", "empty", 0, "^HTTP/1.1 200 OK((?!http://).)*$");
    row("upload", "status:503", 0, "^HTTP/1.1 503");
    row("upload", "no-url", 0, "^HTTP/1.1 200 OK((?!http://).)*Stored\\.$");
    row("sonvara_files", "cut", 18, "^HTTP/1.1 201 ((?!\\}).)*$");
    row("sonvara_files", "bad-body", 0, "^HTTP/1.1 201 .*VDT Feedback((?!\\}).)*$");
    row("sonvara_files", "empty", 0, "^HTTP/1.1 201 ((?!VDT).)*$");
    row("sonvara_files", "status:200", 0, "^HTTP/1.1 200 OK.*VDT Feedback");
    row("static", "garbage", 1, "^$");
    row("static", "bad-body", 0, "^HTTP/1.1 200 OK.*Name");
    row("static", "status:500", 0, "^HTTP/1.1 500");
}

// Each fault once, set while the server runs; the request after it is served as if nothing had been.
void TestFactoryServer::failsAsAskedFor() {
    QFETCH(QString, endpoint);
    QFETCH(QString, fault);
    QFETCH(int, curlStatus);
    QFETCH(QString, answer);
    start();
    write(file("a.tgz"), noise(3000));
    write(file("b.tgz"), noise(3001));
    QCOMPARE(upload("a.tgz").status, 0);
    const auto ask = [&] {
        if (endpoint == "upload")
            return upload("b.tgz");
        return endpoint == "static" ? curl({"-i", "-sS", url("/vdt/static")}) : registerUrl(url("/packages/a.tgz"));
    };
    const QJsonObject setting{{"endpoint", endpoint}, {"fault", fault}, {"times", 1}};
    const QByteArray set = QJsonDocument(setting).toJson(QJsonDocument::Compact);
    QVERIFY(curl({"-i", "-sS", "-d", QString::fromUtf8(set), url("/bench/fault")}).output.startsWith("HTTP/1.1 200"));

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

void TestFactoryServer::needsNoMoreMemoryForALongRecording() {
#ifdef __SANITIZE_ADDRESS__
    QSKIP("the sanitizer holds freed memory back");
#endif
    start();
    const auto highWater = [this] {
        const auto status = QString::fromLatin1(content(QStringLiteral("/proc/%1/status").arg(mServer->processId())));
        return QRegularExpression("VmHWM:\\s+(\\d+) kB").match(status).captured(1).toInt();
    };
    write(file("short.tgz"), noise(4'000'000));
    write(file("long.tgz"), noise(46'000'000));
    QVERIFY(upload("short.tgz").output.contains("HTTP/1.1 200 OK"));
    const int before = highWater();
    QVERIFY(before > 0);
    QVERIFY(upload("long.tgz").output.contains("HTTP/1.1 200 OK"));
    QVERIFY(registerUrl(url("/packages/long.tgz")).output.startsWith("HTTP/1.1 201"));
    QCOMPARE(curl({"-sS", url("/packages/long.tgz")}).output, content(file("long.tgz")));
    QVERIFY2(highWater() - before < 2000, qPrintable(QString::number(highWater() - before)));
}

void TestFactoryServer::sharesItsStoreWithNobody() {
    QVERIFY(QDir().mkpath(file("store/.incoming")));
    write(file("store/.incoming/half"), "left by a server that was killed");
    start();
    QCOMPARE(stored(), QStringList());
    const ProgramRun second = ProgramRun::of(NVH_BIN_DIR "/factory-server", {"--port", "0", "--store", file("store")});
    QCOMPARE(second.status, 2);
    QVERIFY(second.errors.contains("in use by another server"));
    const ProgramRun samePort =
        ProgramRun::of(NVH_BIN_DIR "/factory-server", {"--port", QString::number(mPort), "--store", file("b")});
    QCOMPARE(samePort.status, 2);
    QVERIFY(samePort.errors.contains(QByteArray::number(mPort)));
}

void TestFactoryServer::refusesUnusableArguments_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("named");
    const auto row = [](const char* name, const QStringList& arguments, const char* named) {
        QTest::newRow(name) << arguments << QByteArray(named);
    };
    row("unknown option", {"--prot", "1"}, "prot");
    row("no store", {}, "--store");
    row("port", {"--store", "s", "--port", "70000"}, "70000");
    row("fault", {"--store", "s", "--fault", "upload=explode"}, "upload=explode");
    row("fault without its number", {"--store", "s", "--fault", "upload=delay"}, "upload=delay");
    row("endpoint", {"--store", "s", "--fault", "page=cut"}, "page=cut");
    row("fault elsewhere", {"--store", "s", "--fault", "static=no-url"}, "static=no-url");
    row("list with a gap", {"--store", "s", "--list", "gap.json"}, "gap.json: no row \"1\"");
    row("list that is no JSON", {"--store", "s", "--list", "broken.json"}, "broken.json: line 2");
}

void TestFactoryServer::refusesUnusableArguments() {
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, named);
    write(file("gap.json"), R"({"0": {"Name": "a"}, "2": {"Name": "b"}})");
    write(file("broken.json"), "{\n  \"0\": x}");
    const ProgramRun refused = ProgramRun::of(NVH_BIN_DIR "/factory-server", arguments, mPlace->path());
    QCOMPARE(refused.status, 2);
    QVERIFY2(refused.errors.contains(named), refused.errors.constData());
    QCOMPARE(refused.errors.count('\n'), 1);
    QCOMPARE(refused.output, QByteArray());
}

// cleanup() wants it to end by itself, with status 0 and long before the delay is over.
void TestFactoryServer::endsInTheMiddleOfAnAnswer() {
    write(file("list.json"), R"({"0": {"Name": "Own list"}})");
    start({"--fault", "static=delay:60000", "--list", file("list.json")});
    QTcpSocket waiting;
    waiting.connectToHost("127.0.0.1", mPort);
    QVERIFY(waiting.waitForConnected(5000));
    waiting.write("GET /vdt/static HTTP/1.1\r\n\r\n");
    QVERIFY(waiting.waitForBytesWritten(5000));
    QTcpSocket silent;
    silent.connectToHost("127.0.0.1", mPort);
    QVERIFY(silent.waitForConnected(5000));
    QVERIFY(!waiting.waitForReadyRead(100));
}

QTEST_GUILESS_MAIN(TestFactoryServer)
#include "tst_factoryserver.moc"
