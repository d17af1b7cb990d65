// What the driver does on the recorder's screen, and what the vehicle and the server do meanwhile.

#include "tests/nvh/ui/AppScreen.h"
#include "tests/support/MachineTest.h"
#include "tests/support/ScriptedServer.h"

#include <HelixDash/tables/TableCell.h>
#include <HelixDash/tables/TableView.h>
#include <HelixDash/values/DataValueManager.h>
#include <HelixDash/views/ButtonView.h>
#include <HelixDash/views/LabelView.h>
#include <HelixDash/views/SlideSwitch.h>

#include <QDir>
#include <QFile>
#include <QTest>

#include <functional>

namespace {

const QString kRecording = QStringLiteral("/tmp/recording.wav");

int openFiles() {
    return int(QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::AllEntries | QDir::System).size());
}

}  // namespace

class TestAppView : public MachineTest {
    Q_OBJECT

private slots:
    void init();
    void startsBrakeSquealTest_data();
    void startsBrakeSquealTest();
    void leavesControlsToRecording_data();
    void leavesControlsToRecording();
    void keepsRecordingWhoseRecorderIsStillEnding();
    void restoresScreenAfterInterruption_data();
    void restoresScreenAfterInterruption();
    void downloadsTests_data();
    void downloadsTests();
    void savesMarksWhileListIsReloaded();
    void changesModes();

private:
    void record(AppScreen& screen) {
        screen.touch("mStartButton");
        QVERIFY(recorderWrites());
    }
};

void TestAppView::init() {
    MachineTest::init();
    // Nobody there.
    configure("nvh/vdtStaticURL", "http://127.0.0.1:9/");
}

void TestAppView::startsBrakeSquealTest_data() {
    QTest::addColumn<double>("speed");
    QTest::addColumn<bool>("waits");
    QTest::addColumn<QString>("tag");
    QTest::addRow("standing") << 0.0 << false << "INVALID";
    QTest::addRow("in reverse") << -3.0 << false << "INVALID";
    QTest::addRow("moving") << 0.1 << true << "BSQUEAL";
}

void TestAppView::startsBrakeSquealTest() {
    QFETCH(double, speed);
    QFETCH(bool, waits);
    setValue("VAPI_signedVehicleSpeed", speed);
    setValue("VAPI_brakePedal", false);
    AppScreen screen;
    screen.setSwitch("mBrakeSwitch", "ON");
    screen.setSwitch("mTestTypeSwitch", "Brake Squeal");
    screen.setSwitch("mDurationSwitch", "60 Sec");
    screen.touch("mStartButton");
    QCOMPARE(screen.view<SwitchControl>("mDurationSwitch")->position(), 0);
    QCOMPARE(screen.text("mUploadStatusLabel") == "| Manual Recording", !waits);
    if (waits) {
        QCOMPARE(screen.status(), QString("Waiting for Brake battery/red 340"));
        QVERIFY(screen.takesTouch("mStopButton"));
        QVERIFY(!screen.app().engine().isRunning());
        setValue("VAPI_brakePedal", true);
    }
    QVERIFY(screen.app().engine().isRunning());
    QTEST(screen.app().engine().getTag(), "tag");
    // The pedal belongs to the test now.
    setValue("VAPI_brakePedal", false);
    setValue("VAPI_brakePedal", true);
    QVERIFY(screen.app().engine().isRunning());
    QCOMPARE(mJournal->count("ERROR Already running "), 0);
}

void TestAppView::leavesControlsToRecording_data() {
    QTest::addColumn<QString>("activity");
    for (const char* activity : {"recording", "waiting for the brake", "note"})
        QTest::addRow("%s", activity) << activity;
}

void TestAppView::leavesControlsToRecording() {
    QFETCH(QString, activity);
    setValue("VAPI_signedVehicleSpeed", 30.0);
    AppScreen screen;
    screen.setSwitch("mTestTypeSwitch", activity == "recording" ? "WOT" : "Brake Squeal");
    const char* operated = activity == "note" ? "mNotesButton" : "mStopButton";
    screen.touch(activity == "note" ? "mNotesButton" : "mStartButton");
    const QString before = screen.text(operated) + screen.status();
    mJournal->clear();
    for (const char* signal : {"metadataUploadSuccess", "packageUploadFailure", "packageManagerFailure"}) {
        screen.view<LabelView>("mUploadStatusLabel")->setText("before");
        QVERIFY(QMetaObject::invokeMethod(&screen.packages(), signal));
        QVERIFY(screen.text("mUploadStatusLabel") != "before");
        QVERIFY(screen.takesTouch(operated));
        QVERIFY(!screen.takesTouch("mStartButton") && !screen.takesTouch("mDurationSwitch"));
        QCOMPARE(screen.text(operated) + screen.status(), before);
    }
    QCOMPARE(mJournal->count("INFO fatalError "), 2);
}

void TestAppView::keepsRecordingWhoseRecorderIsStillEnding() {
    mMachine.reset("slow");
    AppScreen screen;
    record(screen);
    screen.touch("mStopButton");
    // Another package's outcome makes the screen ready before there is a file to save.
    emit screen.packages().metadataUploadSuccess();
    QVERIFY(!screen.takesTouch("mSaveButton"));
    screen.touch("mNotesButton");
    QTRY_COMPARE(screen.text("mNotesButton"), QString("Tap when done!"));
    screen.touch("mNotesButton");
    QVERIFY(!QFile::exists("/tmp/notes.wav"));
    writeFile("/tmp/recorder-may-end", "");
    QTRY_VERIFY(screen.takesTouch("mSaveButton"));
    QVERIFY(QFile::exists(kRecording));
}

void TestAppView::restoresScreenAfterInterruption_data() {
    QTest::addColumn<bool>("recording");
    QTest::addRow("ready") << false;
    QTest::addRow("recording") << true;
}

void TestAppView::restoresScreenAfterInterruption() {
    QFETCH(bool, recording);
    AppScreen screen;
    QTRY_VERIFY(screen.view("mVdtTable"));
    if (recording)
        record(screen);
    const auto states = [&screen] {
        QByteArrayList flags;
        for (const DisplayView* child : screen.app().childViews())
            flags.append(child->objectName().toUtf8() + (child->isVisible() ? " shown" : " hidden") +
                         (child->isEnabled() ? " enabled" : " disabled"));
        std::sort(flags.begin(), flags.end());
        return flags.join('\n');
    };
    screen.setSwitch("mStwSwitch", "ON");
    screen.touch("mStatusLabel");  // closes the popup
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    const QByteArray before = states();

    setValue("GUI_steeringWheelControlsMode", 3);
    QVERIFY(screen.takesTouch("mResumeButton"));
    QCOMPARE(states().count("enabled"), 1);
    QVERIFY(!screen.view("mStartButton")->isVisible() && !screen.view("mStopButton")->isVisible());
    QCOMPARE(screen.app().engine().isRunning(), recording);
    // Taken and lost again before the driver resumes, which must not be what he gets back.
    setValue("GUI_steeringWheelControlsMode", 6);
    setValue("GUI_steeringWheelControlsMode", 3);
    screen.touch("mResumeButton");
    QCOMPARE(states(), before);
    QCOMPARE(DataValueManager::instance().find("GUI_steeringWheelControlsMode")->toString(), QString("6"));
}

void TestAppView::downloadsTests_data() {
    QTest::addColumn<QByteArray>("status");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<int>("rows");
    QTest::addColumn<bool>("fresh");
    QTest::addRow("list") << QByteArray("200 OK") << QByteArray(R"({"0": {"Name": "Horn"}})") << 1 << true;
    QTest::addRow("refused") << QByteArray("404 Not Found") << QByteArray("{}") << 10 << false;
    QTest::addRow("no object") << QByteArray("200 OK") << QByteArray("[]") << 10 << false;
    QTest::addRow("no JSON") << QByteArray("200 OK") << QByteArray("{\"0\"") << 0 << true;
}

void TestAppView::downloadsTests() {
    QFETCH(QByteArray, status);
    QFETCH(QByteArray, body);
    QFETCH(bool, fresh);
    ScriptedServer server;
    server.answer({"HTTP/1.1 " + status + "\r\n\r\n" + body});
    configure("nvh/vdtStaticURL", server.url("/vdt/static"));
    AppScreen screen;
    QCOMPARE(screen.text("mVdtCaption"), QString("Downloading VDT Static"));
    QTRY_VERIFY(screen.view("mVdtTable"));
    QTEST(screen.view<TableView>("mVdtTable")->rowCount(), "rows");
    QCOMPARE(screen.text("mVdtCaption"), QString(fresh ? "VDT Static" : "VDT Static (not updated)"));
    QCOMPARE(screen.view("mVdtTable")->geometry(), QRect(850, 50, 425, 430));
    QCOMPARE(screen.text("mFeedbackLabel").startsWith("Error downloading VDT Static\n"), !fresh);
    QVERIFY(screen.takesTouch("mReloadVdtButton"));
    QCOMPARE(screen.view("mReloadVdtButton")->geometry().topLeft(), QPoint(850, 480));
    QCOMPARE(screen.view("mClearFeedbackButton")->right(), 1275);
}

void TestAppView::savesMarksWhileListIsReloaded() {
    ScriptedServer server;
    configure("nvh/vdtStaticURL", server.url("/vdt/static"));
    server.answer({"HTTP/1.1 200 OK\r\n\r\n{\"0\": {\"Name\": \"Horn\"}}"});
    AppScreen screen(AppModeVdt);
    QTRY_VERIFY(screen.view("mVdtTable"));
    screen.view<TableView>("mVdtTable")->cellAt(0)->findChild<SlideSwitch*>()->setPosition(1);
    record(screen);
    screen.touch("mStopButton");
    server.hold();
    screen.app().downloadVdtStatic();
    QTRY_VERIFY(!screen.view("mVdtTable"));
    screen.touch("mSaveButton");
    QTRY_COMPARE(screen.text("mUploadStatusLabel"), QString("| File Saved!"));
    const QStringList packages = screen.packages().savedPackages();
    QCOMPARE(packages.size(), 1);
    QCOMPARE(archiveMember(packages.first(), "tmp/nvh-vdtStatic.txt"),
             QByteArray(R"({"0":{"Name":"Horn","Value":"PASS"}})"));
}

void TestAppView::changesModes() {
    setValue("VAPI_signedVehicleSpeed", 20.0);
    ScriptedServer server;
    server.hold();
    configure("nvh/vdtStaticURL", server.url("/vdt/static"));
    AppScreen screen;
    const std::function<void()> activities[] = {
        [&screen] { screen.touch("mStartButton"); },
        [&screen] { screen.setSwitch("mStwSwitch", "ON"); },
        [&screen] { screen.app().ambientNoiseButtonReleased(); },
        [&screen] {
            if (screen.view("mDurationSwitch"))
                screen.setSwitch("mTestTypeSwitch", "Brake Squeal");
            screen.touch("mStartButton");
        },
    };
    int threads = 0;
    int files = 0;
    for (int change = 0; change < 100; ++change) {
        activities[change % 4]();
        screen.choose(AppMode((change + 1) % 3));
        QCOMPARE(screen.status(), QString("Waiting black 445"));
        if (change == 20) {
            threads = threadCount();
            files = openFiles();
        }
    }
    screen.choose(AppModeService);
    QCOMPARE(childPrograms(), QStringList());
    QVERIFY(threadCount() <= threads);
    QVERIFY(openFiles() <= files);
    QCOMPARE(screen.wrapper().childViews().size(), 1);
    QCOMPARE(screen.titleArea().childViews().size(), 2);
    delete &screen.wrapper();
    QCOMPARE(screen.titleArea().childViews().size(), 0);
}

QTEST_MAIN(TestAppView)
#include "tst_appview.moc"
