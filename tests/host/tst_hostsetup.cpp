#include "host/setup/HostOptions.h"
#include "host/setup/HostServices.h"
#include "host/setup/LogWriter.h"

#include <HelixDash/services/Logger.h>
#include <HelixDash/services/RuntimeEnv.h>
#include <HelixDash/services/SysUtils.h>

#include <QCommandLineParser>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

class TestHostSetup : public QObject {
    Q_OBJECT

private slots:
    void refusesWrongOptions_data();
    void refusesWrongOptions();
    void readsSettings_data();
    void readsSettings();
    void writesLogLines_data();
    void writesLogLines();
    void opensServicesAndLog();

private:
    static std::optional<HostOptions> read(const QStringList& arguments, QString* error) {
        QCommandLineParser parser;
        HostOptions::addTo(parser);
        if (!parser.parse(QStringList(QStringLiteral("program")) + arguments))
            return std::nullopt;
        return HostOptions::read(parser, error);
    }
};

void TestHostSetup::refusesWrongOptions_data() {
    QTest::addColumn<QString>("argument");
    QTest::addColumn<QString>("reason");
    QTest::newRow("vin blank") << "--vin=ABC 1"
                               << "--vin: \"ABC 1\" is not 1 to 17 letters and digits";
    QTest::newRow("vin path") << "--vin=../x"
                              << "--vin: \"../x\" is not 1 to 17 letters and digits";
    QTest::newRow("vin empty") << "--vin="
                               << "--vin: \"\" is not 1 to 17 letters and digits";
    QTest::newRow("north of the pole") << "--position=90.5,0"
                                       << "--position: \"90.5,0\" is not LAT,LON in degrees, from -90 to 90 and from "
                                          "-180 to 180";
    QTest::newRow("latitude alone") << "--position=47.1"
                                    << "--position: \"47.1\" is not LAT,LON in degrees, from -90 to 90 and from -180 "
                                       "to 180";
    QTest::newRow("host name") << "--gateway=gateway"
                               << "--gateway: \"gateway\" is no IPv4 address";
    QTest::newRow("short address") << "--gateway=127.1"
                                   << "--gateway: \"127.1\" is no IPv4 address";
    QTest::newRow("no file") << "--log="
                             << "--log: no file is named";
    QTest::newRow("no equals sign") << "--set=VAPI_trim"
                                    << "--set: \"VAPI_trim\" is not NAME=VALUE";
    QTest::newRow("no name") << "--set==1"
                             << "--set: \"=1\" is not NAME=VALUE";
    QTest::newRow("typeless") << "--set=A=invalid"
                              << "--set: A=invalid needs a type: bool:invalid, int:invalid or real:invalid";
    const QString noValue = QStringLiteral(
        "--set: \"%1\" for A is neither true, false, a whole number of 32 bit, a number with a decimal point nor "
        "TYPE:invalid");
    for (const char* text : {"", "TRUE", "3000000000", "1e3", "1.0.0", "nan", "text:invalid"})
        QTest::newRow(*text ? text : "no value")
            << QStringLiteral("--set=A=") + QLatin1String(text) << noValue.arg(QLatin1String(text));
}

void TestHostSetup::refusesWrongOptions() {
    QFETCH(QString, argument);
    QString error;
    QVERIFY(!read({QStringLiteral("--set=B=1"), argument}, &error));
    QTEST(error, "reason");
}

void TestHostSetup::readsSettings_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("type");
    QTest::addColumn<QVariant>("value");
    using Type = DataValueManager::Type;
    QTest::newRow("truth") << "A=false" << int(Type::Bool) << QVariant(false);
    QTest::newRow("whole") << "A=-12" << int(Type::Int) << QVariant(-12);
    QTest::newRow("real") << "A=-.5e3" << int(Type::Real) << QVariant(-500.0);
    QTest::newRow("real without digits") << "A=12." << int(Type::Real) << QVariant(12.0);
    QTest::newRow("invalid bool") << "A=bool:invalid" << int(Type::Bool) << QVariant();
    QTest::newRow("invalid real") << "A=real:invalid" << int(Type::Real) << QVariant();
}

void TestHostSetup::readsSettings() {
    QFETCH(QString, text);
    const auto setting = ValueSetting::parse(text, nullptr);
    QVERIFY(setting);
    QCOMPARE(setting->name, QStringLiteral("A"));
    QTEST(int(setting->type), "type");
    QTEST(setting->value, "value");
}

void TestHostSetup::writesLogLines_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("written");
    QTest::newRow("trailing blank") << "nvh_app :  valid " << QByteArray("nvh_app :  valid ");
    QTest::newRow("tab") << "\tcmd: 11" << QByteArray("\\tcmd: 11");
    QTest::newRow("line ends") << "a\nb\r\nc\rd\n" << QByteArray("a\\nb\\nc\\nd\\n");
    QTest::newRow("backslash") << "C:\\new" << QByteArray("C:\\\\new");
    QTest::newRow("umlaut") << QString::fromUtf8("Gerät") << QByteArray("Gerät");
}

void TestHostSetup::writesLogLines() {
    QFETCH(QString, text);
    const QDateTime time(QDate(2024, 2, 29), QTime(23, 59, 59, 7), Qt::UTC);
    const LogMessage message{time, QStringLiteral("INFO"), QStringLiteral("NVHWorker"), text};
    QFETCH(QByteArray, written);
    QCOMPARE(message.toLine(), "2024-02-29T23:59:59.007Z\tINFO\tNVHWorker\t" + written + "\n");
}

void TestHostSetup::opensServicesAndLog() {
    const QTemporaryDir directory;
    const QString log = directory.filePath(QStringLiteral("run.log"));
    QString error;
    const auto options =
        read({"--log", log, "--vin", "TEST42", "--gateway", "127.0.0.9", "--position", "-47.5, 8.25", "--config",
              directory.filePath(QStringLiteral("new.ini")), "--set", "VAPI_motorRPM=12", "--set",
              "VAPI_brakePedal=bool:invalid", "--set", "BODY_new=1.5", "--set", "VAPI_motorRPM=13"},
             &error);
    QVERIFY2(options, qPrintable(error));
    HostServices services;
    QVERIFY2(services.open(*options, &error), qPrintable(error));
    const DataValueManager& values = DataValueManager::instance();
    QCOMPARE(values.find<RealDataValue>(QStringLiteral("VAPI_motorRPM"))->value(), 13.0);
    QCOMPARE(values.find<RealDataValue>(QStringLiteral("BODY_new"))->value(), 1.5);
    QVERIFY(!values.find<BoolDataValue>(QStringLiteral("VAPI_brakePedal"))->isValid());
    QVERIFY(!values.find<IntDataValue>(QStringLiteral("VAPI_trim"))->isValid());
    QCOMPARE(SysUtils::vin(), QStringLiteral("TEST42"));
    QCOMPARE(RuntimeEnv::instance()->gatewayAddress(), QHostAddress(QStringLiteral("127.0.0.9")));
    QCOMPARE(LocationManager::instance()->currentLocation().latitude, -47.5);
    QCOMPARE(LocationManager::instance()->currentLocation().longitude, 8.25);

    QStringList seen;
    connect(&LogWriter::instance(), &LogWriter::written, this, [&seen](const LogMessage& message) {
        QCOMPARE(QThread::currentThread(), QCoreApplication::instance()->thread());
        seen << message.sender + QLatin1Char('|') + message.text;
    });
    const std::unique_ptr<QThread> thread(QThread::create([] { Logger(nullptr, "WARN") << "elsewhere"; }));
    thread->start();
    QVERIFY(thread->wait());
    Logger(this, "INFO") << "here";
    QTRY_COMPARE(seen, QStringList({"-|elsewhere ", "TestHostSetup|here "}));

    QFile file(log);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArrayList lines = file.readAll().split('\n');
    QCOMPARE(lines.size(), 3);
    QVERIFY(lines.at(0).endsWith("Z\tWARN\t-\telsewhere "));
    QVERIFY(lines.at(1).endsWith("Z\tINFO\tTestHostSetup\there "));
}

QTEST_GUILESS_MAIN(TestHostSetup)
#include "tst_hostsetup.moc"
