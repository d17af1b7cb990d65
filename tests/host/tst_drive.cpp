#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

// Plays drives on the test application through the real program, each row in a process and a directory of its own.
class TestDrive : public QObject {
    Q_OBJECT

private slots:
    void init();
    void holds_data();
    void holds();
    void fails_data();
    void fails();
    void refusesBeforeItStarts_data();
    void refusesBeforeItStarts();
    void refusesArguments_data();
    void refusesArguments();
    void drawsAndDescribesTheScreen();
    void waitsForItsTimes();
    void endsCleanlyOnATermination();

private:
    struct Result {
        int status = -1;
        QString errors;
    };

    void write(const QString& name, const QByteArray& content) {
        QFile file(mDirectory->filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    }
    static QString plugin(const char* name) {
        return QStringLiteral(NVH_LIB_DIR "/../tests/%1.so").arg(QLatin1String(name));
    }
    QStringList usualArguments() const {
        return {QStringLiteral("--plugin"), plugin("testapplication"),  QStringLiteral("--app-dir"),
                QStringLiteral("."),        QStringLiteral("--config"), QStringLiteral("c.ini")};
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
    Result play(const QByteArray& lines, const QStringList& moreArguments = {}) {
        write(QStringLiteral("test.drive"), lines);
        return run(usualArguments() + QStringList{QStringLiteral("--drive"), QStringLiteral("test.drive")} +
                   moreArguments);
    }

    std::unique_ptr<QTemporaryDir> mDirectory;
};

void TestDrive::init() {
    mDirectory = std::make_unique<QTemporaryDir>();
    write(QStringLiteral("c.ini"), "[test]\nStopped=\"All stopped\"\n");
    write(QStringLiteral("trace.csv"), "t_s,VAPI_trim,TRACE_made\n0,1,\n0.01,2,0.5\n100,3,\n");
}

void TestDrive::holds_data() {
    QTest::addColumn<QByteArray>("lines");
    QTest::newRow("comments") << QByteArray("# nothing to do\n\n  \n");
    QTest::newRow("touch where two buttons lie") << QByteArray(R"({"touch": "mStart"}
{"expect": "mStatus", "text": "Recording", "colour": "battery/green", "visible": true, "enabled": true}
{"expect": "mStart", "visible": false}
{"touch": "mStart"}
{"expect": "mStatus", "text": "All stopped", "colour": "battery/red"})");
    QTest::newRow("touch what takes none") << QByteArray(R"({"touch": "mDisabled"}
{"touch": "mHiddenSwitch"}
{"expect": "mStatus", "text": "Ready "}
{"expect": "mHiddenSwitch", "text": "OFF", "visible": false})");
    QTest::newRow("slide") << QByteArray(R"({"slide": "mSwitch", "to": "ON"}
{"expect": "mSwitch", "text": "ON"}
{"slide": "mSwitch", "to": 1}
{"expect": "mSwitch", "text": "ON"}
{"slide": "mSwitch", "to": 0}
{"expect": "mSwitch", "text": "OFF"}
{"slide": "mDuration", "to": "60 Sec"}
{"expect": "mDuration", "text": "60 Sec"}
{"slide": "mDuration", "to": 1}
{"expect": "mDuration", "text": "5 Sec"})");
    QTest::newRow("slide what takes no touch") << QByteArray(R"({"slide": "mDisabledSwitch", "to": "ON"}
{"slide": "mHiddenSwitch", "to": "ON"}
{"expect": "mDisabledSwitch", "text": "OFF", "enabled": false}
{"expect": "mHiddenSwitch", "text": "OFF"})");
    QTest::newRow("pick") << QByteArray(R"-({"pick": "mPicker", "choice": "Sum (Avg.)"}
{"expect": "mPicker", "text": "Sum (Avg.)"}
{"expect": "mStatus", "text": "Sum (Avg.)"}
{"pick": "mDisabledPicker", "choice": "Left"}
{"expect": "mDisabledPicker", "text": "Right"})-");
    QTest::newRow("mark") << QByteArray(R"({"mark": "mTable", "row": 0, "to": "PASS"}
{"expectLog": "mTable 0 PASS "}
{"mark": "mTable", "row": 19, "to": 2}
{"expectLog": "mTable 19 NA "}
{"mark": "mTable", "row": 0, "to": "FAIL"}
{"expectLog": "mTable 0 FAIL "})");
    QTest::newRow("mark what takes no touch") << QByteArray(R"({"mark": "mDisabledTable", "row": 1, "to": "PASS"}
{"mark": "mDisabledTable", "row": 19, "to": "PASS"}
{"touch": "mStart"}
{"expectLog": "Recording started"})");
    QTest::newRow("set in the order given") << QByteArray(
        R"({"set": {"VAPI_trim": 2, "VAPI_motorRPM": 2300.5, "VAPI_brakePedal": true, "VAPI_trim": 1}}
{"set": {"VAPI_motorRPM": null, "MADE_whole": 7, "MADE_real": 7.0}}
{"expect": "mSignals", "text": "trim=2 motorRPM=2300.5 brakePedal=true trim=1 motorRPM=Invalid "}
{"expectValue": "VAPI_trim", "is": 1.0}
{"expectValue": "VAPI_motorRPM", "is": null}
{"expectValue": "VAPI_brakePedal", "is": true}
{"expectValue": "MADE_real", "is": 7})");
    QTest::newRow("trace") << QByteArray(R"({"trace": "trace.csv"}
{"expectValue": "VAPI_trim", "is": 2, "within": 2}
{"expectValue": "TRACE_made", "is": 0.5}
{"expect": "mSignals", "text": "trim=1 trim=2 "}
{"trace": null}
{"trace": "trace.csv", "from": 100}
{"expectValue": "VAPI_trim", "is": 3, "within": 2})");
    QTest::newRow("expect what comes later") << QByteArray(R"({"expect": "mNew", "there": false}
{"touch": "mLater", "hold": 0.1}
{"expect": "mStatus", "matches": "[0-9]+ s$", "within": 2}
{"expect": "mNew", "text": "new"}
{"expectLog": "Later", "level": "INFO", "within": 2})");
    QTest::newRow("expect one log line after the other") << QByteArray(R"({"touch": "mStart"}
{"touch": "mStart"}
{"touch": "mStart"}
{"expectLog": "Loaded"}
{"expectLog": "Recording", "level": "ERROR"}
{"expectLog": "Recording started"})");
    QTest::newRow("config") << QByteArray(R"({"config": {"test/Stopped": "Enough", "test/Number": 12, "test/On": true}}
{"touch": "mStart"}
{"touch": "mStart"}
{"expect": "mStatus", "text": "Enough"})");
}

void TestDrive::holds() {
    QFETCH(QByteArray, lines);
    const Result result = play(lines);
    QVERIFY2(result.status == 0, qPrintable(result.errors));
    // What a row of that table logs when its mark moves.
    QVERIFY2(!result.errors.contains(QStringLiteral("mDisabledTable 1")), qPrintable(result.errors));
}

void TestDrive::fails_data() {
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("seen");
    QTest::newRow("no view") << QByteArray(R"({"touch": "mNone"})") << "there is no view mNone";
    QTest::newRow("not there") << QByteArray(R"({"expect": "mNone", "visible": true})") << "there is no view mNone";
    QTest::newRow("there") << QByteArray(R"({"expect": "mStart", "there": false})") << "mStart is there";
    QTest::newRow("text") << QByteArray(R"({"expect": "mStatus", "text": "Ready", "colour": "battery/red"})")
                          << R"(mStatus: text is "Ready ", colour is "black")";
    QTest::newRow("flags") << QByteArray(R"({"expect": "mDisabled", "visible": false, "enabled": true, "within": 0.1})")
                           << "mDisabled: visible is true, enabled is false";
    QTest::newRow("no item") << QByteArray(R"({"slide": "mSwitch", "to": "MAYBE"})")
                             << R"(mSwitch has no item "MAYBE", only "OFF", "ON")";
    QTest::newRow("no position") << QByteArray(R"({"slide": "mSwitch", "to": 2})") << "mSwitch has no position 2";
    QTest::newRow("no switch") << QByteArray(R"({"slide": "mStart", "to": 1})") << "mStart is no switch";
    QTest::newRow("no choice") << QByteArray(R"({"pick": "mPicker", "choice": "Middle"})")
                               << R"(mPicker has no choice "Middle")";
    QTest::newRow("no row") << QByteArray(R"({"mark": "mTable", "row": 20, "to": "NA"})") << "mTable has 20 rows";
    QTest::newRow("no mark") << QByteArray(R"({"mark": "mTable", "row": 1, "to": "N/A"})")
                             << R"(row 1 of mTable has no item "N/A")";
    QTest::newRow("log level") << QByteArray(R"({"expectLog": "Loaded", "level": "WARN", "within": 0.1})")
                               << R"(the newest is INFO "Loaded testapplication)";
    QTest::newRow("value") << QByteArray(R"({"expectValue": "VAPI_trim", "is": 3})") << "VAPI_trim is Invalid";
    QTest::newRow("no value") << QByteArray(R"({"expectValue": "NONE", "is": null})") << "there is no data value NONE";
    QTest::newRow("type") << QByteArray(R"({"set": {"VAPI_brakePedal": 1}})")
                          << "VAPI_brakePedal is a truth value and cannot be 1";
    QTest::newRow("null of nothing") << QByteArray(R"({"set": {"NONE": null}})")
                                     << "there is no data value NONE to make invalid";
    QTest::newRow("no directory") << QByteArray(R"({"grab": "none/screen.png"})") << "none/screen.png: ";
    QTest::newRow("no picture") << QByteArray(R"({"grab": "screen.txt"})") << "screen.txt: ";
}

void TestDrive::fails() {
    QFETCH(QByteArray, line);
    QFETCH(QString, seen);
    const Result result = play("# one step\n{\"wait\": 0.001}\n" + line + "\n{\"touch\": \"mStart\"}\n");
    QCOMPARE(result.status, 1);
    QVERIFY2(result.errors.contains(QStringLiteral("test.drive:3: ") + QString::fromUtf8(line)),
             qPrintable(result.errors));
    QVERIFY2(result.errors.contains(seen), qPrintable(result.errors));
    QVERIFY(!result.errors.contains(QStringLiteral("Recording started")));
}

void TestDrive::refusesBeforeItStarts_data() {
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("reason");
    QTest::newRow("no JSON") << QByteArray(R"({"touch": )") << "no JSON: ";
    QTest::newRow("no object") << QByteArray("[1]") << "a step is a JSON object";
    QTest::newRow("no step") << QByteArray(R"({"tap": "mStart"})") << "there is no such step";
    QTest::newRow("two steps") << QByteArray(R"({"touch": "a", "wait": 1})") << "\"touch\" and \"wait\" are two steps";
    QTest::newRow("twice") << QByteArray(R"({"touch": "a", "touch": "b"})") << "the member \"touch\" is there twice";
    QTest::newRow("unknown member") << QByteArray(R"({"touch": "a", "holt": 1})")
                                    << "there is no member \"holt\" in the step \"touch\"";
    QTest::newRow("missing member") << QByteArray(R"({"slide": "a"})") << "the member \"to\" is missing";
    QTest::newRow("no name") << QByteArray(R"({"touch": ""})") << "touch: a text that is not empty is wanted";
    QTest::newRow("name type") << QByteArray(R"({"expect": 5})") << "expect: a text that is not empty is wanted";
    QTest::newRow("truth type") << QByteArray(R"({"expect": "a", "visible": 1})") << "visible: true or false is wanted";
    QTest::newRow("row type") << QByteArray(R"({"mark": "a", "row": 1.5, "to": "NA"})")
                              << "row: a whole number from 0 is wanted";
    QTest::newRow("position") << QByteArray(R"({"slide": "a", "to": -1})") << "to: the text of an item";
    QTest::newRow("negative time") << QByteArray(R"({"wait": -1})") << "wait: a number of seconds from 0 is wanted";
    QTest::newRow("start") << QByteArray(R"({"wait": 1, "at": "1"})") << "at: a number of seconds from 0 is wanted";
    QTest::newRow("value type") << QByteArray(R"({"set": {"A": "text"}})") << "set: \"A\" cannot be \"text\"";
    QTest::newRow("no values") << QByteArray(R"({"set": {}})") << "set: at least one name with its value is wanted";
    QTest::newRow("pattern") << QByteArray(R"({"expect": "a", "matches": "("})") << "matches: ";
    QTest::newRow("text and pattern") << QByteArray(R"({"expect": "a", "text": "a", "matches": "a"})")
                                      << "matches stands instead of text";
    QTest::newRow("not there, yet red") << QByteArray(R"({"expect": "a", "there": false, "colour": "red"})")
                                        << "a view that is not there has no other condition";
    QTest::newRow("no trace") << QByteArray(R"({"trace": "none.csv"})") << "none.csv: No such file";
    QTest::newRow("wrong trace") << QByteArray(R"({"trace": "wrong.csv"})") << "wrong.csv:3: \"fast\" for A is neither";
    QTest::newRow("trace type") << QByteArray(R"({"trace": "pedal.csv"})")
                                << "pedal.csv: VAPI_brakePedal is a truth value, the trace gives a whole number";
    QTest::newRow("behind the trace") << QByteArray(R"({"trace": "trace.csv", "from": 101})")
                                      << "from: trace.csv ends after 100 s";
}

void TestDrive::refusesBeforeItStarts() {
    QFETCH(QByteArray, line);
    QFETCH(QString, reason);
    write(QStringLiteral("wrong.csv"), "t_s,A\n0,1\n1,fast\n");
    write(QStringLiteral("pedal.csv"), "t_s,VAPI_brakePedal\n0,1\n");
    const Result result = play("{\"touch\": \"mStart\"}\n\n" + line + "\n");
    QCOMPARE(result.status, 2);
    QVERIFY2(result.errors.contains(QStringLiteral("helixdash: --drive: test.drive:3: ")), qPrintable(result.errors));
    QVERIFY2(result.errors.contains(reason), qPrintable(result.errors));
    QVERIFY(!result.errors.contains(QStringLiteral("Loaded")));
}

void TestDrive::refusesArguments_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("reason");
    const QStringList usual = {"--app-dir", ".", "--config", "c.ini"};
    const auto with = [usual](const QString& name) { return usual + QStringList{"--plugin", name}; };
    QTest::newRow("no plug-in") << usual << "--plugin is missing";
    QTest::newRow("unknown") << usual + QStringList{"--plug"} << "Unknown option 'plug'";
    QTest::newRow("stray") << with("p.so") + QStringList{"more"} << "more: no such argument";
    QTest::newRow("no directory") << QStringList{"--app-dir", "none", "--config", "c.ini", "--plugin", "p.so"}
                                  << "--app-dir: none is no directory";
    QTest::newRow("no configuration directory") << with("p.so") + QStringList{"--config", "none/c.ini"} << "--config: ";
    QTest::newRow("no drive") << with("p.so") + QStringList{"--drive", "none"} << "--drive: none: No such file";
    QTest::newRow("wrong trace") << with("p.so") + QStringList{"--trace", "c.ini"} << "--trace: c.ini:1: the header";
    QTest::newRow("wrong setting") << with("p.so") + QStringList{"--set", "VAPI_trim=true"}
                                   << "--set: VAPI_trim is a whole number and cannot be true";
    QTest::newRow("no library") << with("none.so") << "--plugin: none.so: there is no such file";
    QTest::newRow("not a library") << with("c.ini") << "--plugin: ";
    QTest::newRow("no entry") << with(plugin("brokenapplication_HAS_NO_ENTRY")) << "does not export LoadPlugin";
    QTest::newRow("no view") << with(plugin("brokenapplication_GIVES_NO_VIEW")) << "LoadPlugin gave no view";
    QTest::newRow("throws") << with(plugin("brokenapplication_THROWS")) << "LoadPlugin failed: no such skin";
}

void TestDrive::refusesArguments() {
    QFETCH(QStringList, arguments);
    QFETCH(QString, reason);
    const Result result = run(arguments);
    QCOMPARE(result.status, 2);
    const QStringList said = result.errors.split(QLatin1Char('\n')).filter(QStringLiteral("helixdash: "));
    QCOMPARE(said.size(), 1);
    QVERIFY2(said.first().contains(reason), qPrintable(result.errors));
}

void TestDrive::drawsAndDescribesTheScreen() {
    const Result result = play(R"({"touch": "mStart"}
{"grab": "screen.png"}
{"tree": "tree.json"})");
    QVERIFY2(result.status == 0, qPrintable(result.errors));
    const QImage picture(mDirectory->filePath(QStringLiteral("screen.png")));
    QCOMPARE(picture.size(), QSize(1300, 1000));

    QFile file(mDirectory->filePath(QStringLiteral("tree.json")));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QJsonObject screen = QJsonDocument::fromJson(file.readAll()).object();
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
    QCOMPARE(application.value("class").toString(), QStringLiteral("TestApplication"));
    QCOMPARE(QJsonValue(child(application, "mStatus")["text"]), QJsonValue("Recording"));
    QCOMPARE(QJsonValue(child(application, "mStatus")["colour"]), QJsonValue("battery/green"));
    QCOMPARE(QJsonValue(child(application, "mStart")["visible"]), QJsonValue(false));
    QCOMPARE(QJsonValue(child(application, "mStop")["buttonColour"]), QJsonValue(3));
    QCOMPARE(QJsonValue(child(application, "mDisabled")["enabled"]), QJsonValue(false));
    const QJsonObject duration = child(application, "mDuration");
    QCOMPARE(duration.value("items").toArray(), QJsonArray({"Manual", "5 Sec", "10 Sec", "60 Sec"}));
    QCOMPARE(duration.value("position").toInt(-1), 0);
    QCOMPARE(duration.keys(), QStringList({"buttonColour", "children", "class", "colour", "enabled", "height", "items",
                                           "name", "position", "text", "visible", "width", "x", "y"}));
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

void TestDrive::endsCleanlyOnATermination() {
    QProcess process;
    process.setReadChannel(QProcess::StandardError);
    start(process, usualArguments());
    QByteArray errors;
    while (!errors.contains("Loaded") && process.waitForReadyRead(10000))
        errors += process.readAll();
    QVERIFY2(errors.contains("Loaded"), errors.constData());
    process.terminate();
    QVERIFY(process.waitForFinished(10000));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 128 + 15);
}

QTEST_GUILESS_MAIN(TestDrive)
#include "tst_drive.moc"
