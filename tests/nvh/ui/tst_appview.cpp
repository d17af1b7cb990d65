// What the driver does on the recorder's screen, and what the vehicle and the server do meanwhile.

#include "tests/nvh/ui/AppScreen.h"
#include "tests/support/MachineTest.h"
#include "tests/support/Rows.h"
#include "tests/support/ScriptedServer.h"

#include <HelixDash/tables/TableCell.h>
#include <HelixDash/tables/TableView.h>
#include <HelixDash/values/DataValueManager.h>
#include <HelixDash/views/ButtonView.h>
#include <HelixDash/views/LabelView.h>
#include <HelixDash/views/SlideSwitch.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <functional>

namespace {

const QString kRecording = QStringLiteral("/tmp/recording.wav");
const QByteArray kHorn = "HTTP/1.1 200 OK\r\n\r\n{\"0\": {\"Name\": \"Horn\"}}";

int openFiles() {
    return int(QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::AllEntries | QDir::System).size());
}

}  // namespace

class TestAppView : public MachineTest {
    Q_OBJECT

private slots:
    void init() {
        MachineTest::init();
        // Nobody there.
        configure("nvh/vdtStaticURL", "http://127.0.0.1:9/");
    }

    void startsBrakeSquealTest_data() {
        const auto row = columns<double, bool, QString>("speed", "waits", "tag");
        row("standing", 0.0, false, "INVALID");
        row("in reverse", -3.0, false, "INVALID");
        row("moving", 0.1, true, "BSQUEAL");
    }

    void startsBrakeSquealTest() {
        const auto [speed, waits] = cells<double, bool>();
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

    void leavesControlsToRecording_data() {
        const auto row = columns<QString>("activity");
        for (const char* activity : {"recording", "waiting for the brake", "note", "recorded"})
            row(activity, activity);
    }

    void leavesControlsToRecording() {
        QFETCH(QString, activity);
        setValue("VAPI_signedVehicleSpeed", 30.0);
        AppScreen screen;
        screen.setSwitch("mTestTypeSwitch", activity.startsWith("record") ? "WOT" : "Brake Squeal");
        const char* operated = activity == "note"       ? "mNotesButton"
                               : activity == "recorded" ? "mSaveButton"
                                                        : "mStopButton";
        screen.touch(activity == "note" ? "mNotesButton" : "mStartButton");
        if (activity == "recorded")
            screen.touch("mStopButton");
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

    void keepsRecordingFromOutcomesOfOthers() {
        replaceProgram("gzip", "while [ ! -e /tmp/recorder-may-end ]; do sleep 0.01; done\nexec /bin/gzip \"$@\"");
        AppScreen screen;
        record(screen);
        screen.touch("mStopButton");
        QTRY_VERIFY(QFile::exists(kRecording));
        takeWheel(screen);
        emit screen.packages().packageUploadFailure();
        press("STW_leftMiddle");
        QCOMPARE(mJournal->count("INFO startButtonAction "), 1);
        QVERIFY(mJournal->has("INFO saveButtonReleased "));
        QTRY_VERIFY(screen.packages().isPackaging());
        const QByteArray before = states(screen);
        for (const char* signal : {"metadataUploadSuccess", "fileSaved", "packageManagerFailure"}) {
            screen.view<LabelView>("mUploadStatusLabel")->setText("before");
            QVERIFY(QMetaObject::invokeMethod(&screen.packages(), signal));
            QVERIFY(screen.text("mUploadStatusLabel") != "before");
            QCOMPARE(states(screen), before);
        }
        QVERIFY(!screen.takesTouch("mStartButton") && !screen.takesTouch("mDiscardButton"));
        writeFile("/tmp/recorder-may-end", "");
        QTRY_VERIFY(screen.takesTouch("mStartButton"));
        QCOMPARE(screen.text("mUploadStatusLabel"), QString("| File Saved!"));
    }

    void keepsRecordingWhoseRecorderIsStillEnding() {
        mMachine.reset("slow");
        AppScreen screen;
        record(screen);
        screen.touch("mStopButton");
        // The clip's end makes the screen ready before there is a file to save.
        screen.touch("mNotesButton");
        QTRY_COMPARE(screen.text("mNotesButton"), QString("Tap when done!"));
        screen.touch("mNotesButton");
        QVERIFY(!QFile::exists("/tmp/notes.wav") && !screen.takesTouch("mSaveButton"));
        writeFile("/tmp/recorder-may-end", "");
        QTRY_VERIFY(screen.takesTouch("mSaveButton"));
        QVERIFY(QFile::exists(kRecording));
    }

    void keepsFeedbackOfFailedClip() {
        mMachine.reset("refuse");
        configure("nvh/vdtStaticURL", "http://127.0.0.1:9/");
        AppScreen screen;
        QTRY_VERIFY(screen.view("mVdtTable"));
        screen.touch("mNotesButton");
        QTRY_COMPARE(childPrograms(), QStringList());
        emit screen.app().engine().updateFeedbackLabel("Error with arecord\nno device");
        screen.app().stopNotesRecording();
        QCOMPARE(screen.text("mFeedbackLabel"), QString("Error with arecord\nno device"));
        QCOMPARE(screen.status(), QString("Waiting black 445"));
        QVERIFY(screen.takesTouch("mStartButton") && screen.takesTouch("mNotesButton"));
    }

    // Whatever has happened before, each of these leads back to the same ready screen.
    void agreesAfterAnyOrder() {
        AppScreen screen;
        QTRY_VERIFY(screen.view("mVdtTable"));
        takeWheel(screen);
        const auto discard = [&screen] { screen.touch("mDiscardButton"); };
        const std::function<void()> happenings[] = {
            [&] {
                qputenv("NVH_RECORDER", "refuse");
                screen.touch("mStartButton");
                QTRY_COMPARE(screen.status(), QString("Recording done! battery/blue 350"));
                qputenv("NVH_RECORDER", "");
                discard();
            },
            [&] {
                setValue("VAPI_signedVehicleSpeed", 30.0);
                setValue("VAPI_brakePedal", false);
                screen.setSwitch("mTestTypeSwitch", "Brake Squeal");
                screen.touch("mStartButton");
                QCOMPARE(screen.status(), QString("Waiting for Brake battery/red 340"));
                setValue("VAPI_brakePedal", true);
                screen.setSwitch("mTestTypeSwitch", "WOT");
                screen.touch("mStopButton");
                discard();
            },
            [&] {
                screen.touch("mNotesButton");
                QVERIFY(!screen.takesTouch("mStartButton"));
                screen.app().stopNotesRecording();
                screen.app().discardButtonReleased();
            },
            [&] {
                setValue("GUI_steeringWheelControlsMode", 3);
                QVERIFY(!screen.takesTouch("mDurationSwitch"));
                screen.touch("mResumeButton");
            },
        };
        const QByteArray ready = states(screen);
        int order[] = {0, 1, 2, 3};
        do {
            for (int happening : order) {
                happenings[happening]();
                QCOMPARE(states(screen), ready);
                QCOMPARE(screen.status(), QString("Waiting black 445"));
            }
        } while (std::next_permutation(std::begin(order), std::end(order)));
    }

    void restoresScreenAfterInterruption() {
        AppScreen screen;
        QTRY_VERIFY(screen.view("mVdtTable"));
        record(screen);
        takeWheel(screen);
        const QByteArray before = states(screen);

        setValue("GUI_steeringWheelControlsMode", 3);
        QVERIFY(screen.takesTouch("mResumeButton"));
        QCOMPARE(states(screen).count("enabled"), 1);
        QVERIFY(!screen.view("mStartButton")->isVisible() && !screen.view("mStopButton")->isVisible());
        QVERIFY(screen.app().engine().isRunning());
        // Taken and lost again before the driver resumes, which must not be what he gets back.
        setValue("GUI_steeringWheelControlsMode", 6);
        setValue("GUI_steeringWheelControlsMode", 3);
        screen.touch("mResumeButton");
        QCOMPARE(states(screen), before);
        QCOMPARE(DataValueManager::instance().find("GUI_steeringWheelControlsMode")->toString(), QString("6"));
    }

    void leavesWheelToItsOwner() {
        AppScreen screen;
        record(screen);
        takeWheel(screen);
        setValue("GUI_steeringWheelControlsMode", 3);
        screen.app().engine().stop();
        QTRY_VERIFY(QFile::exists(kRecording));
        press("STW_leftBottom");
        QVERIFY(!mJournal->has("INFO discardButtonReleased "));
        setValue("GUI_steeringWheelControlsMode", 6);
        screen.touch("mResumeButton");
        press("STW_leftMiddle");
        QVERIFY(mJournal->has("INFO stopButtonAction "));
        // The run is over for long; an upload's outcome brings what was recorded back.
        emit screen.packages().packageUploadFailure();
        QVERIFY(screen.takesTouch("mStartButton") && screen.takesTouch("mDiscardButton"));
    }

    void downloadsTests_data() {
        const auto row = columns<QByteArray, QByteArray, int, bool>("status", "body", "rows", "fresh");
        row("list", "200 OK", QByteArray(R"({"0": {"Name": "Horn"}})"), 1, true);
        row("refused", "404 Not Found", "{}", 10, false);
        row("no object", "200 OK", "[]", 10, false);
        row("no JSON", "200 OK", "{\"0\"", 0, true);
        const QByteArray padding(100000, ' ');
        row("long", "200 OK", R"({"0": {"Name": "Horn"})" + padding + '}', 1, true);
        row("long, no JSON", "200 OK", "{\"0\"" + padding, 0, true);
        row("long, refused", "404 Not Found", padding, 10, false);
        row("too long", "200 OK", "{}" + padding.repeated(170), 0, true);
    }

    void downloadsTests() {
        const auto [status, body, rows, fresh] = cells<QByteArray, QByteArray, int, bool>();
        serveList("HTTP/1.1 " + status + "\r\n\r\n" + body);
        AppScreen screen;
        QCOMPARE(screen.text("mVdtCaption"), QString("Downloading VDT Static"));
        QTRY_VERIFY(screen.view("mVdtTable"));
        QCOMPARE(screen.view<TableView>("mVdtTable")->rowCount(), rows);
        QCOMPARE(screen.text("mVdtCaption"), QString(fresh ? "VDT Static" : "VDT Static (not updated)"));
        QCOMPARE(screen.view("mVdtTable")->geometry(), QRect(850, 50, 425, 430));
        QCOMPARE(screen.text("mFeedbackLabel").startsWith("Error downloading VDT Static\n"), !fresh);
        QVERIFY(screen.takesTouch("mReloadVdtButton"));
        QCOMPARE(screen.view("mReloadVdtButton")->geometry().topLeft(), QPoint(850, 480));
        QCOMPARE(screen.view("mClearFeedbackButton")->right(), 1275);
        const QStringList errors = mJournal->withPrefix("ERROR ");
        QCOMPARE(int(errors.size()), screen.view<TableView>("mVdtTable")->rowCount() == 0 ? 1 : 0);
        static const QRegularExpression reason(": (line 1: [a-z ]+|longer than 16777216 bytes) $");
        QVERIFY(errors.isEmpty() || errors.first().contains(reason));
        for (const QString& entry : mJournal->entries())
            QVERIFY(entry.size() < 66000);
        QVERIFY(screen.text("mFeedbackLabel").size() < 66000);
    }

    void readsLongListAside() {
        QTest::failOnWarning(QRegularExpression("QProcess"));
        serveList(kHorn.chopped(1) + QByteArray(100000, ' ') + '}').hold();
        for (const bool goes : {false, true}) {
            AppScreen screen;
            screen.app().downloadVdtStatic();
            QCOMPARE(mJournal->withPrefix("INFO A download of the VDT Static tests is under way").size(), goes ? 2 : 1);
            bool isThere = true;
            connect(screen.app().findChild<QProcess*>(), &QProcess::finished, &screen.app(), [&] {
                isThere = screen.view("mVdtTable");
                if (goes)
                    QTimer::singleShot(0, &screen.wrapper(), [&screen] { screen.choose(AppModeService); });
            });
            QTRY_VERIFY(!mServer->requests().isEmpty());
            mServer->release();
            QTRY_VERIFY(!isThere);
            QTRY_VERIFY(goes ? !screen.view("mReloadVdtButton") : screen.view("mVdtTable") != nullptr);
            mServer->answer({"HTTP/1.1 200 OK\r\n\r\n{" + QByteArray(10000000, ' ') + '}'});
        }
    }

    void saysHowToSeeCoveredList() {
        serveList(kHorn).hold();
        AppScreen screen;
        takeWheel(screen);
        setValue("GUI_steeringWheelControlsMode", 3);
        QTRY_VERIFY(!mServer->requests().isEmpty());
        mServer->release();
        QTRY_VERIFY(screen.view("mVdtTable"));
        screen.touch("mResumeButton");
        QVERIFY(!screen.view("mVdtTable")->isVisible());
        QCOMPARE(screen.text("mFeedbackLabel"),
                 QString("VDT Static was loaded while the screen was covered. Change the mode to see it."));
    }

    void savesMarksWhileListIsReloaded() {
        serveList(kHorn);
        AppScreen screen(AppModeVdt);
        QTRY_VERIFY(screen.view("mVdtTable"));
        screen.view<TableView>("mVdtTable")->cellAt(0)->findChild<SlideSwitch*>()->setPosition(1);
        record(screen);
        screen.touch("mStopButton");
        mServer->hold();
        screen.app().downloadVdtStatic();
        QTRY_VERIFY(!screen.view("mVdtTable"));
        screen.touch("mSaveButton");
        QTRY_COMPARE(screen.text("mUploadStatusLabel"), QString("| File Saved!"));
        const QStringList packages = screen.packages().savedPackages();
        QCOMPARE(packages.size(), 1);
        QCOMPARE(archiveMember(packages.first(), "tmp/nvh-vdtStatic.txt"),
                 QByteArray(R"({"0":{"Name":"Horn","Value":"PASS"}})"));
    }

    void packsRecordingWithoutMarks() {
        const QString marks = QStringLiteral("/tmp/nvh-vdtStatic.txt");
        writeFile("/tmp/recorder-somebody", "his");
        QVERIFY(QFile::link("/tmp/recorder-somebody", marks));
        AppScreen screen;
        QTRY_VERIFY(screen.view("mVdtTable"));
        record(screen);
        screen.touch("mStopButton");
        screen.touch("mSaveButton");
        QTRY_COMPARE(screen.text("mUploadStatusLabel"), QString("| File Saved!"));
        QCOMPARE(readFile("/tmp/recorder-somebody"), QByteArray("his"));
        const QStringList packages = screen.packages().savedPackages();
        QCOMPARE(packages.size(), 1);
        QVERIFY(archiveMembers(packages.first()).contains("tmp/recording.wav"));
        QVERIFY(!mJournal->withPrefix("ERROR No marks\n" + marks).isEmpty());
        QVERIFY(screen.text("mFeedbackLabel").contains("No marks\n" + marks));
    }

    void repeatsNoteThatListReplaced() {
        serveList(kHorn).hold();
        writeFile(mMachine.kCapture, QByteArray(100, 's'));
        AppScreen screen;
        QTRY_COMPARE(mServer->requests().size(), 1);
        record(screen);
        mServer->release();
        QTRY_VERIFY(screen.view("mVdtTable"));
        QCOMPARE(screen.text("mFeedbackLabel"),
                 QString("A recording that was never filed is kept in\n/tmp/capture/test.rescue/test.wav"));
    }

    void changesModes() {
        setValue("VAPI_signedVehicleSpeed", 20.0);
        serveList({}).hold();
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
            [&screen] {
                screen.setSwitch("mStwSwitch", "ON");
                setValue("GUI_steeringWheelControlsMode", 3);
            },
            [&screen] {
                screen.touch("mStartButton");
                screen.app().engine().stop();
            },
            [&screen] {
                screen.touch("mStartButton");
                screen.app().engine().stop();
                screen.touch("mUploadButton");
            },
        };
        int threads = 0;
        int files = 0;
        for (int change = 0; change < 100; ++change) {
            activities[change % std::size(activities)]();
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

private:
    void record(AppScreen& screen) {
        screen.touch("mStartButton");
        QVERIFY(recorderWrites());
    }
    // The static tests come from there.
    ScriptedServer& serveList(const QByteArray& answer) {
        mServer = std::make_unique<ScriptedServer>();
        mServer->answer({answer});
        configure("nvh/vdtStaticURL", mServer->url("/vdt/static"));
        return *mServer;
    }
    // The flags of all views in the screen.
    static QByteArray states(AppScreen& screen) {
        QByteArrayList flags;
        for (const DisplayView* child : screen.app().childViews())
            flags.append(child->objectName().toUtf8() + (child->isVisible() ? " shown" : " hidden") +
                         (child->isEnabled() ? " enabled" : " disabled"));
        std::sort(flags.begin(), flags.end());
        return flags.join('\n');
    }
    static void press(const char* wheelButton) {
        setValue(wheelButton, true);
        setValue(wheelButton, false);
    }
    static void takeWheel(AppScreen& screen) {
        screen.setSwitch("mStwSwitch", "ON");
        screen.touch("mStatusLabel");  // closes the popup
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    std::unique_ptr<ScriptedServer> mServer;
};

QTEST_MAIN(TestAppView)
#include "tst_appview.moc"
