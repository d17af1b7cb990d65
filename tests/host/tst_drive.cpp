#include "tests/support/Files.h"
#include "tests/support/Rows.h"

#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

// Plays drives on the test application through the real program, each row in a process and a directory of its own.
class TestDrive : public QObject {
    Q_OBJECT

private slots:
    void init() {
        mDirectory = std::make_unique<QTemporaryDir>();
        writeFile(file("c.ini"), "[test]\nStopped=All\n");
        writeFile(file("trace.csv"), "t_s,VAPI_trim,TRACE_made,VAPI_brakePedal\n0,1,,invalid\n0.01,2,0.5,\n100,3,,\n");
        writeFile(file("largereal.csv"), "t_s,VAPI_motorRPM\n0,3000000000\n");
    }

    void holds_data();
    void holds() {
        QFETCH(QByteArray, lines);
        const Result result = play(lines);
        QVERIFY2(result.status == 0, qPrintable(result.errors));
    }

    void fails_data();
    void fails() {
        const auto [reason, status] = cells<QString, int>();
        const QByteArray line = QTest::currentDataTag();
        writeFile(file("pedal.csv"), "t_s,VAPI_brakePedal\n0,1\n");
        writeFile(file("large.csv"), "t_s,VAPI_motorRPM,NEW\n0,3000000000,1\n1,,\n2,,-2147483649\n3,,3000000000\n");
        writeFile(file("largetrim.csv"), "t_s,VAPI_trim\n0,4294967297\n");
        const Result result = play("# one step\n{\"wait\": 0.001}\n" + line + "\n{\"touch\": \"mStart\"}\n");
        QCOMPARE(result.status, status);
        const bool started = status == 1;
        const QString place = started ? "test.drive:3: " + line : QByteArray("helixdash: --drive: test.drive:3: ");
        QVERIFY2(result.errors.contains(place) && result.errors.contains(reason), qPrintable(result.errors));
        QVERIFY(!result.errors.contains(started ? QStringLiteral("Recording started") : QStringLiteral("Loaded")));
    }

    void refusesArguments_data() {
        const auto row = columns<QStringList, QString>("arguments", "reason");
        const auto with = [](const QString& name) { return QStringList{"--plugin", name}; };
        row("no plug-in", {}, "--plugin is missing");
        row("unknown", QStringList("--plug"), "Unknown option 'plug'");
        row("stray", with("p.so") + QStringList("more"), "more: no such argument");
        row("directory", with("p.so") + QStringList("--app-dir=none"), "--app-dir: none is no directory");
        row("configuration", with("p.so") + QStringList("--config=none/c.ini"), "--config: ");
        row("trace", with("p.so") + QStringList("--trace=c.ini"), "--trace: c.ini:1: the header");
        row("setting", with("p.so") + QStringList("--set=VAPI_trim=true"),
            "--set: VAPI_trim is a whole number and cannot be true");
        row("no library", with("none.so"), "--plugin: none.so: there is no such file");
        row("not a library", with("c.ini"), "--plugin: ");
        row("no entry", with(plugin("../lib/libHelixDash")), "does not export LoadPlugin");
        row("no view", with(plugin("brokenapplication_GIVES_NO_VIEW")), "LoadPlugin gave no view");
        row("throws", with(plugin("brokenapplication_THROWS")), "LoadPlugin failed: no such skin");
    }

    void refusesArguments() {
        const auto [arguments, reason] = cells<QStringList, QString>();
        const Result result = run(QStringList{"--app-dir", ".", "--config", "c.ini"} + arguments);
        QCOMPARE(result.status, 2);
        const QStringList said = result.errors.split(QLatin1Char('\n')).filter(QStringLiteral("helixdash: "));
        QCOMPARE(said.size(), 1);
        QVERIFY2(said.first().contains(reason), qPrintable(result.errors));
    }

    void drawsAndDescribesTheScreen();
    void waitsForItsTimes();
    void endsCleanlyOnASignal_data() {
        const auto row = columns<int, QStringList>("number", "before");
        row("interrupt", SIGINT, {});
        row("termination", SIGTERM, {});
        row("terminal gone", SIGHUP, {});
        row("terminal gone, ignored", SIGTERM, QStringList("nohup"));
    }

    void endsCleanlyOnASignal() {
        const auto [number, before] = cells<int, QStringList>();
        QProcess process;
        process.setReadChannel(QProcess::StandardError);
        process.setWorkingDirectory(mDirectory->path());
        const QStringList command = before + QStringList(NVH_BIN_DIR "/helixdash") + usualArguments();
        process.start(command.first(), command.mid(1));
        QByteArray errors;
        while (!errors.contains("Loaded") && process.waitForReadyRead(10000))
            errors += process.readAll();
        QVERIFY2(errors.contains("Loaded"), errors.constData());
        if (!before.isEmpty())
            ::kill(pid_t(process.processId()), SIGHUP);
        ::kill(pid_t(process.processId()), number);
        QVERIFY(process.waitForFinished(10000));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 128 + number);
    }

    void printsNothingThatActsOnATerminal() {
        const Result result = play("{\"set\": {\"A\": true}, \"at\": 0}\n{\"expect\": \"m\\u001b[2J\\u009bN\"}\n");
        QCOMPARE(result.status, 1);
        QVERIFY2(result.errors.contains(QLatin1String("there is no view m\\x1b[2J\\x9bN")), qPrintable(result.errors));
        QVERIFY(!result.errors.contains(QLatin1Char('\x1b')));
    }

private:
    struct Result {
        int status = -1;
        QString errors;
    };

    QString file(const QString& name) const { return mDirectory->filePath(name); }
    static QString plugin(const char* name) {
        return QStringLiteral(NVH_LIB_DIR "/../tests/%1.so").arg(QLatin1String(name));
    }
    QStringList usualArguments() const {
        return {"--plugin", plugin("testapplication"), "--app-dir", ".", "--config", "c.ini"};
    }
    void start(QProcess& process, const QStringList& arguments) {
        process.setWorkingDirectory(mDirectory->path());
        process.start(QStringLiteral(NVH_BIN_DIR "/helixdash"), arguments);
    }
    Result run(const QStringList& arguments) {
        QProcess process;
        start(process, arguments);
        process.waitForFinished(20000);
        return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
                QString::fromUtf8(process.readAllStandardError())};
    }
    Result play(const QByteArray& lines) {
        writeFile(file("test.drive"), lines);
        return run(usualArguments() + QStringList("--drive=test.drive"));
    }

    std::unique_ptr<QTemporaryDir> mDirectory;
};

void TestDrive::holds_data() {
    const auto row = columns<QByteArray>("lines");
    row("touch where two buttons lie", R"(# what the configuration gives
{"config": {"test/Stopped": "Enough", "test/Number": 12}}

{"touch": "mStart"}
{"expect": "mStatus", "text": "Recording", "colour": "battery/green", "visible": true, "enabled": true}
{"expect": "mStart", "visible": false}
{"touch": "mStart"}
{"expect": "mStatus", "text": "Enough", "colour": "battery/red"}
{"touch": "mStart"}
{"expectLog": "Recording", "level": "ERROR"}
{"expectLog": "Recording started"})");
    row("what takes no touch", R"({"touch": "mDisabled"}
{"slide": "mDisabledSwitch", "to": "ON"}
{"slide": "mHiddenSwitch", "to": "ON"}
{"expect": "mStatus", "text": "Ready "}
{"expect": "mDisabledSwitch", "text": "OFF", "enabled": false}
{"expect": "mHiddenSwitch", "text": "OFF", "visible": false})");
    row("slide to a position and pick", R"-({"slide": "mSwitch", "to": 1}
{"expect": "mSwitch", "text": "ON"}
{"pick": "mPicker", "choice": "Sum (Avg.)"}
{"expect": "mPicker", "text": "Sum (Avg.)"})-");
    row("a row that is still to be made", R"({"mark": "mLongTable", "row": 999, "to": "ON"}
{"expect": "mRow999", "text": "ON"})");
    row("set in the order given",
        R"({"set": {"VAPI_trim": 2, "VAPI_motorRPM": 2300.5, "VAPI_brakePedal": true, "VAPI_trim": 1}}
{"set": {"VAPI_motorRPM": null, "MADE_whole": 7, "MADE_real": 7.0}}
{"expect": "mSignals", "text": "trim=2 motorRPM=2300.5 brakePedal=true trim=1 motorRPM=Invalid "}
{"expectValue": "VAPI_trim", "is": 1.0}
{"expectValue": "VAPI_motorRPM", "is": null}
{"expectValue": "MADE_real", "is": 7})");
    row("large numbers", R"({"set": {"WHOLE": -2147483648, "REAL": 3e9, "POINT": 4294967297.0}}
{"expectValue": "WHOLE", "is": -2147483648}
{"expectValue": "REAL", "is": 3000000000}
{"expectValue": "POINT", "is": 4294967297}
{"set": {"VAPI_motorRPM": 4294967297, "VAPI_trim": 2147483647}}
{"expectValue": "VAPI_motorRPM", "is": 4294967297}
{"trace": "largereal.csv"}
{"expectValue": "VAPI_motorRPM", "is": 3000000000, "within": 2}
{"wait": 0, "at": 0.001})");
    row("trace", R"({"trace": "trace.csv"}
{"expectValue": "VAPI_trim", "is": 2, "within": 2}
{"expectValue": "TRACE_made", "is": 0.5}
{"expect": "mSignals", "text": "trim=1 trim=2 "}
{"trace": null}
{"trace": "trace.csv", "from": 100}
{"expectValue": "VAPI_trim", "is": 3, "within": 2})");
    row("expect what comes later", R"({"expect": "mNew", "there": false}
{"touch": "mLater", "hold": 0.1}
{"expect": "mStatus", "matches": "[0-9]+ s$", "within": 2}
{"expect": "mNew", "text": "new"}
{"expectLog": "Later", "level": "INFO", "within": 2})");
}

void TestDrive::fails_data() {
    const auto row = columns<QString, int>("reason", "status");
    const std::pair<const char*, const char*> atTheStep[] = {
        {R"({"touch": "mNone"})", "there is no view mNone"},
        {R"({"expect": "mStart", "there": false})", "mStart is there"},
        {R"({"expect": "mStatus", "text": "Ready", "colour": "battery/red"})",
         R"(mStatus: text is "Ready ", colour is "black")"},
        {R"({"expect": "mDisabled", "visible": false, "enabled": true, "within": 0.1})",
         "mDisabled: visible is true, enabled is false"},
        {R"({"slide": "mSwitch", "to": "MAYBE"})", R"(mSwitch has no item "MAYBE", only "OFF", "ON")"},
        {R"({"slide": "mSwitch", "to": 2})", "mSwitch has no position 2"},
        {R"({"slide": "mStart", "to": 1})", "mStart is no switch"},
        {R"({"pick": "mPicker", "choice": "Middle"})", R"(mPicker has no choice "Middle")"},
        {R"({"mark": "mStart", "row": 0, "to": "NA"})", "mStart is no table"},
        {R"({"mark": "mTable", "row": 0, "to": "NA"})", "mTable has 0 rows"},
        {R"({"mark": "mLongTable", "row": 1000, "to": "NA"})", "mLongTable has 1000 rows"},
        {R"({"expectLog": "Loaded", "level": "WARN", "within": 0.1})", R"(the newest is INFO "Loaded testapplication)"},
        {R"({"expectValue": "VAPI_trim", "is": 3})", "VAPI_trim is Invalid"},
        {R"({"expectValue": "NONE", "is": null})", "there is no data value NONE"},
        {R"({"set": {"VAPI_brakePedal": 1}})", "VAPI_brakePedal is a truth value and cannot be 1"},
        {R"({"set": {"NONE": null}})", "there is no data value NONE to make invalid"},
        {R"({"grab": "none/screen.png"})", "none/screen.png: "},
    };
    for (const auto& [line, reason] : atTheStep)
        row(line, reason, 1);
    const std::pair<const char*, const char*> beforeItStarts[] = {
        {R"({"touch": )", "no JSON: "},
        {"[1]", "a step is a JSON object"},
        {R"({"tap": "mStart"})", "there is no such step"},
        {R"({"touch": "a", "wait": 1})", "\"touch\" and \"wait\" are two steps"},
        {R"({"touch": "a", "touch": "b"})", "the member \"touch\" is there twice"},
        {R"({"touch": "a", "holt": 1})", "there is no member \"holt\" in the step \"touch\""},
        {R"({"slide": "a"})", "the member \"to\" is missing"},
        {R"({"expect": 5})", "expect: a text that is not empty is wanted"},
        {R"({"expect": "a", "visible": 1})", "visible: true or false is wanted"},
        {R"({"mark": "a", "row": 1.5, "to": "NA"})", "row: a whole number from 0 is wanted"},
        {R"({"slide": "a", "to": -1})", "to: the text of an item"},
        {R"({"wait": -1})", "wait: a number of seconds from 0 is wanted"},
        {R"({"wait": 1, "at": "1"})", "at: a number of seconds from 0 is wanted"},
        {R"({"set": {"A": "text"}})", "set: \"A\" cannot be \"text\""},
        {R"({"set": {}})", "set: at least one name with its value is wanted"},
        {R"({"expect": "a", "matches": "("})", "matches: "},
        {R"({"expect": "a", "text": "a", "matches": "a"})", "matches stands instead of text"},
        {R"({"expect": "a", "there": false, "colour": "red"})", "a view that is not there has no other condition"},
        {R"({"set": {"NEW": 3000000000}})", "set: NEW is a whole number of 32 bit and cannot be 3000000000"},
        {R"({"set": {"NEW": -2147483649}})", "set: NEW is a whole number of 32 bit and cannot be -2147483649"},
        {R"({"set": {"NEW": 99999999999999999999}})", "set: NEW is a whole number of 32 bit and cannot be 1e+20"},
        {R"({"set": {"VAPI_trim": 4294967297}})", "VAPI_trim is a whole number of 32 bit and cannot be 4294967297"},
        {R"({"set": {"VAPI_trim": 1e10}})", "VAPI_trim is a whole number of 32 bit and cannot be 10000000000"},
        {R"({"wait": 2147484})", "wait: 2147484 s are more than 2000000 s"},
        {R"({"touch": "mStart", "hold": 3e6})", "hold: 3e6 s are more than 2000000 s"},
        {R"({"expect": "mStart", "within": 1e300})", "within: 1e300 s are more than 2000000 s"},
        {R"({"wait": 0, "at": 2000001})", "at: 2000001 s are more than 2000000 s"},
        {R"({"trace": "trace.csv", "from": 1e10})", "from: 1e10 s are more than 2000000 s"},
        {R"({"trace": "large.csv"})", "large.csv:4: NEW is a whole number of 32 bit, the trace gives a larger one"},
        {R"({"trace": "largetrim.csv"})", "largetrim.csv:2: VAPI_trim is a whole number of 32 bit, the trace gives"},
        {R"({"trace": "none.csv"})", "none.csv: No such file"},
        {R"({"trace": "pedal.csv"})", "pedal.csv: VAPI_brakePedal is a truth value, the trace gives a whole number"},
        {R"({"trace": "trace.csv", "from": 101})", "from: trace.csv ends after 100 s"},
    };
    for (const auto& [line, reason] : beforeItStarts)
        row(line, reason, 2);
}

void TestDrive::drawsAndDescribesTheScreen() {
    const Result result = play(R"({"touch": "mStart"}
{"grab": "screen.png"}
{"tree": "tree.json"})");
    QVERIFY2(result.status == 0, qPrintable(result.errors));
    const QImage picture(file("screen.png"));
    QCOMPARE(picture.size(), QSize(1300, 1000));

    const QJsonObject screen = QJsonDocument::fromJson(readFile(file("tree.json"))).object();
    const auto child = [](const QJsonObject& view, const QString& name) {
        for (const QJsonValue& node : view.value("children").toArray()) {
            if (node["name"].toString() == name)
                return node.toObject();
        }
        return QJsonObject();
    };
    const QJsonObject area = child(screen, "applicationArea");
    QCOMPARE(area.value("y").toInt(), 60);
    QCOMPARE(area.value("height").toInt(), 940);
    const QJsonObject application = child(area, "TestApplication");
    QCOMPARE(QJsonValue(child(application, "mStart")["visible"]), QJsonValue(false));
    QJsonObject disabled = child(application, "mDisabledSwitch");
    QCOMPARE(disabled.take("children").toArray().size(), 1);
    const char* expected = R"({"name": "mDisabledSwitch", "class": "SlideSwitch", "x": 240, "y": 300, "width": 120,
        "height": 60, "visible": true, "enabled": false, "text": "OFF", "colour": null, "buttonColour": null,
        "items": ["OFF", "ON"], "position": 0})";
    QCOMPARE(disabled, QJsonDocument::fromJson(expected).object());
}

void TestDrive::waitsForItsTimes() {
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(play(R"({"wait": 0.2}
{"wait": 0, "at": 0.5})")
                 .status,
             0);
    QVERIFY(clock.elapsed() >= 500);
    QCOMPARE(play(R"({"expect": "mStatus", "text": "never", "within": 0.3, "at": 0.1})").status, 1);
    QVERIFY(clock.elapsed() >= 900);
}

QTEST_GUILESS_MAIN(TestDrive)
#include "tst_drive.moc"
