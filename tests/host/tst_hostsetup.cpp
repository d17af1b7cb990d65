#include "host/setup/HostOptions.h"
#include "host/setup/HostServices.h"
#include "host/setup/LogWriter.h"
#include "host/setup/PlainText.h"
#include "tests/support/Files.h"
#include "tests/support/Rows.h"

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
    void refusesWrongOptions_data() {
        const auto row = columns<QString>("reason");
        struct Refused {
            const char* option;
            std::vector<const char*> texts;
            const char* reason;
        };
        const Refused refused[] = {
            {"--vin", {"ABC 1", "../x", ""}, "--vin: \"%1\" is not 1 to 17 letters and digits"},
            {"--position",
             {"90.5,0", "47.1"},
             "--position: \"%1\" is not LAT,LON in degrees, from -90 to 90 and from -180 to 180"},
            {"--gateway", {"gateway", "127.1"}, "--gateway: \"%1\" is no IPv4 address"},
            {"--log", {""}, "--log: no file is named"},
            {"--set", {"VAPI_trim", "=1"}, "--set: \"%1\" is not NAME=VALUE"},
            {"--set", {"A=invalid"}, "--set: A=invalid needs a type: bool:invalid, int:invalid or real:invalid"},
            {"--set=A",
             {"", "TRUE", "3000000000", "1e3", "1.0.0", "nan", "text:invalid"},
             "--set: \"%1\" for A is neither true, false, a whole number of 32 bit, a number with a decimal point nor "
             "TYPE:invalid"},
        };
        for (const auto& [option, texts, reason] : refused) {
            for (const char* text : texts) {
                const QString argument = QStringLiteral("%1=%2").arg(QLatin1String(option), QLatin1String(text));
                row(qPrintable(argument), QString(reason).replace("%1", text));
            }
        }
    }

    void refusesWrongOptions() {
        QString error;
        QVERIFY(!read({QStringLiteral("--set=B=1"), QTest::currentDataTag()}, &error));
        QTEST(error, "reason");
    }

    void writesALogLine() {
        const QDateTime time(QDate(2024, 2, 29), QTime(23, 59, 59, 7), Qt::UTC);
        const LogMessage message{time, QStringLiteral("INFO"), QStringLiteral("NVHWorker"),
                                 QString::fromUtf8("\tC:\\new a\nb\r\nc\rd\n\x1b[2J\b\x7f\u009b\u2028 Gerät ")};
        QCOMPARE(
            message.toLine(),
            "2024-02-29T23:59:59.007Z\tINFO\tNVHWorker\t\\tC:\\\\new a\\nb\\nc\\nd\\n\\x1b[2J\\x08\\x7f\\x9b\\u2028 "
            "Gerät \n");
        QCOMPARE(PlainText::lines(message.text),
                 QString::fromUtf8("\tC:\\new a\nb\nc\\x0dd\n\\x1b[2J\\x08\\x7f\\x9b\\u2028 Gerät "));
    }

    void opensServicesAndLog() {
        const QTemporaryDir directory;
        const QString log = directory.filePath(QStringLiteral("run.log"));
        QString error;
        const auto options = read({"--log",      log,
                                   "--vin",      "TEST42",
                                   "--gateway",  "127.0.0.9",
                                   "--position", "-47.5, 8.25",
                                   "--config",   directory.filePath(QStringLiteral("new.ini")),
                                   "--set",      "VAPI_motorRPM=12",
                                   "--set",      "VAPI_brakePedal=bool:invalid",
                                   "--set",      "BODY_real=-.5e3",
                                   "--set",      "BODY_whole=-12",
                                   "--set",      "BODY_truth=false",
                                   "--set",      "BODY_point=12.",
                                   "--set",      "BODY_none=real:invalid",
                                   "--set",      "VAPI_motorRPM=13"},
                                  &error);
        QVERIFY2(options, qPrintable(error));
        HostServices services;
        QVERIFY2(services.open(*options, &error), qPrintable(error));
        const DataValueManager& values = DataValueManager::instance();
        QCOMPARE(values.find<RealDataValue>(QStringLiteral("VAPI_motorRPM"))->value(), 13.0);
        QCOMPARE(values.find<RealDataValue>(QStringLiteral("BODY_real"))->value(), -500.0);
        QCOMPARE(values.find<RealDataValue>(QStringLiteral("BODY_point"))->value(), 12.0);
        QCOMPARE(values.find<IntDataValue>(QStringLiteral("BODY_whole"))->value(), -12);
        QCOMPARE(values.find<BoolDataValue>(QStringLiteral("BODY_truth"))->toString(), QStringLiteral("false"));
        QVERIFY(!values.find<RealDataValue>(QStringLiteral("BODY_none"))->isValid());
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

        const QByteArrayList lines = readFile(log).split('\n');
        QCOMPARE(lines.size(), 3);
        QVERIFY(lines.at(0).endsWith("Z\tWARN\t-\telsewhere "));
        QVERIFY(lines.at(1).endsWith("Z\tINFO\tTestHostSetup\there "));
    }

private:
    static std::optional<HostOptions> read(const QStringList& arguments, QString* error) {
        QCommandLineParser parser;
        HostOptions::addTo(parser);
        if (!parser.parse(QStringList(QStringLiteral("program")) + arguments))
            return std::nullopt;
        return HostOptions::read(parser, error);
    }
};

QTEST_GUILESS_MAIN(TestHostSetup)
#include "tst_hostsetup.moc"
