// The screen of each mode: what is there, where, with which text, and what of it can be touched.

#include "tests/nvh/ui/AppScreen.h"
#include "tests/support/MachineTest.h"
#include "tests/support/Rows.h"

#include <HelixDash/tables/TableView.h>

#include <QMetaMethod>
#include <QTest>

class TestLayout : public MachineTest {
    Q_OBJECT

private slots:
    void showsWidgets_data() {
        columns<int, QByteArray, QString, QPoint, QByteArray>("mode", "name", "text", "place", "state");
        const auto row = [](int mode, const char* name, const char* text, int x, int y, const char* state = "enabled") {
            QTest::addRow("%s %s", qPrintable(appModeToStr(AppMode(mode))), name)
                << mode << QByteArray(name) << QString(text) << QPoint(x, y) << QByteArray(state);
        };
        for (int mode : {AppModeNvh, AppModeVdt, AppModeService}) {
            row(mode, "mStatusLabel", "Waiting", 445, 130);
            row(mode, "mUploadStatusLabel", "| Files Uploaded: -", 555, 130);
            row(mode, "mRpmCaption", "RPM: ", 600, 165);
            row(mode, "mRpmLabel", "", 670, 165);
            row(mode, "mTimeLabel", "0 s", 475, 165);
            row(mode, "mCanAlertLabel", "-", 860, 180, "hidden");
            row(mode, "mUploadButton", "Upload", 360, 530, "disabled");
            row(mode, "mSaveButton", "Save", 510, 530, "disabled");
            row(mode, "mDiscardButton", "Discard", 660, 530, "disabled");
            row(mode, "mUploadAllButton", " Upload 0 Files ", 15, 640);
            row(mode, "mMicChannelCaption", "Mic Channel", 420, 380, "hidden");
            row(mode, "mFreqResCaption", "Freq. Res.", 670, 380, "hidden");
            row(mode, "mBrakeSwitch", "OFF,ON", 222, 830);
            row(mode, "mStwSwitch", "OFF,ON", 222, 720);
            row(mode, "mClunkButton", "Anti Torque Reversal On", 15, 600, "hidden");
        }
        for (int mode : {AppModeNvh, AppModeService}) {
            row(mode, "mAmbientButton", "Record Ambient", 360, 30);
            row(mode, "mNotesButton", "Record Notes", 580, 30);
        }
        for (int mode : {AppModeVdt, AppModeService})
            row(mode, "mFeedbackTitle", "Orvanta Feedback", 90, 15);
        row(AppModeNvh, "mTitleLabel", "NVH v3.0", 0, 0);
        row(AppModeNvh, "mModeSwitch", "NVH,VDT,SERVICE", 0, 0);
        row(AppModeNvh, "mDurationCaption", "Duration", 40, 15);
        row(AppModeNvh, "mDurationSwitch", "Manual,5 Sec,10 Sec,15 Sec,20 Sec,30  Sec,45 sec,60 Sec", 25, 25);
        row(AppModeNvh, "mTestTypeSwitch",
            "35 MPH,42-43 Steady,65 MPH,WOT,Regen,BSR,Mic Test,Brake Squeal,Service,App Test", 200, 25);
        row(AppModeNvh, "mTestTypeCaption", "Test Type", 210, 15);
        row(AppModeNvh, "mReloadVdtButton", "Reload VDT Static", 15, 600, "hidden");
        row(AppModeNvh, "mClearFeedbackButton", "Clear Feedback", 15, 675, "hidden");
        row(AppModeNvh, "mVdtCaption", "Downloading VDT Static", 900, 15);
        row(AppModeNvh, "mVsmCaption", "Vehicle Status Monitor", 460, 600);
        row(AppModeNvh, "mFeedbackTitle", "Orvanta Feedback", 980, 600);
        row(AppModeVdt, "mClearFeedbackButton", "Clear Feedback", 360, 30);
        row(AppModeVdt, "mReloadVdtButton", "Reload VDT Static", 580, 30);
        row(AppModeVdt, "mTestTypeCaption", "Test Type", 120, 0);
        row(AppModeVdt, "mTestTypeSwitch", "65 MPH,35 MPH", 25, 0);
        row(AppModeService, "mClearFeedbackButton", "Clear Feedback", 15, 0);
        row(AppModeService, "mVsmCaption", "Vehicle Status Monitor", 940, 15);
        for (const char* name : {"mAmbientButton", "mNotesSpinner", "mDurationCaption", "mDurationSwitch"})
            row(AppModeVdt, name, "", 0, 0, "gone");
        for (const char* name :
             {"mDurationSwitch", "mTestTypeCaption", "mTestTypeSwitch", "mReloadVdtButton", "mVdtTable"})
            row(AppModeService, name, "", 0, 0, "gone");
    }

    void showsWidgets() {
        const auto [mode, name, text, place] = cells<int, QByteArray, QString, QPoint>();
        const AppScreen screen(mode);
        const DisplayView* view = screen.view(name.constData());
        QTEST(QByteArray(!view                ? "gone"
                         : !view->isVisible() ? "hidden"
                         : view->isEnabled()  ? "enabled"
                                              : "disabled"),
              "state");
        if (!view)
            return;
        QCOMPARE(screen.text(name.constData()), text);
        QCOMPARE(view->left(), place.x());
        if (place.y() > 0)  // else a matter of sizes, see relatesPlaces()
            QCOMPARE(view->top(), place.y());
    }

    void relatesPlaces_data() {
        columns<int>("mode");
        for (int mode : {AppModeNvh, AppModeVdt, AppModeService})
            QTest::addRow("%s", qPrintable(appModeToStr(AppMode(mode)))) << mode;
    }

    void relatesPlaces() {
        QFETCH(int, mode);
        const AppScreen screen(mode);
        if (mode == AppModeVdt) {
            QCOMPARE(screen.view("mTestTypeSwitch")->bottom(), screen.view("mUploadAllButton")->top() - 50);
            QCOMPARE(screen.view("mTestTypeCaption")->bottom(), screen.view("mTestTypeSwitch")->top() - 20);
        }
        const auto place = [&screen](const char* name) { return screen.view(name)->geometry(); };
        const QRect start = place("mStartButton");
        QCOMPARE(start, QRect(360, screen.view("mRpmCaption")->bottom(), 470,
                              screen.view("mUploadButton")->top() - screen.view("mRpmCaption")->bottom()));
        QCOMPARE(place("mStopButton"), start);
        QCOMPARE(place("mResumeButton"), start);
        QCOMPARE(screen.view("mUploadButton")->bottom(), 600);
        QCOMPARE(screen.view("mBrakeSwitch")->bottom(), 890);
        QCOMPARE(screen.view("mStwSwitch")->bottom(), screen.view("mBrakeCaption")->top() - 50);
        QCOMPARE(screen.view("mUploadAllButton")->bottom(), screen.view("mStwSwitch")->top() - 20);
        QCOMPARE(place("mBrakeCaption").topLeft(), QPoint(25, place("mBrakeSwitch").top()));
        QCOMPARE(place("mFeedbackArea"),
                 mode == AppModeNvh ? QRect(850, 640, 425, 280) : QRect(30, 50, 315, start.height() + 10));
        QCOMPARE(place("mVsmTable"), mode == AppModeService ? QRect(840, 50, 450, 425) : QRect(385, 640, 450, 425));
    }

    void keepsSlotsInOrder() {
        QByteArrayList slotNames;
        const QMetaObject& meta = NVHAppView::staticMetaObject;
        for (int index = meta.methodOffset(); index < meta.methodCount(); ++index)
            slotNames.append(meta.method(index).name());
        QCOMPARE(
            slotNames.join(' '),
            QByteArray(
                "updateAdditionalButtons ambientNoiseButtonReleased notesRecordButtonReleased "
                "stopAmbientNoiseRecording stopNotesRecording resumeButtonAction startButtonAction stopButtonAction "
                "remindUserToStopNotes uploadButtonReleased discardButtonReleased saveButtonReleased "
                "uploadSavedButtonReleased clunkButtonToggled resultsReady getSliderDurationPos getClunkButtonState "
                "setUploadNum updateUploadAndSavedNum initState updateTimeCounter updateMotorRPM updateFeedbackLabel "
                "clearFeedbackLabel showPackagingStatus packageFailStatus endPackagingStatus uploadStartStatus "
                "uploadFinishedStatus uploadFailedStatus metaUploadStartStatus metaUploadFinishedStatus "
                "metaUploadFailedStatus handleError fatalError noCanDataAlert startUpdating actuallyStop "
                "startBrakeTestRecording downloadVdtStatic initVdtTable vsmControlsToggledByUser "
                "stwControlsToggledByUser brakePedalControlToggledByUser"));
    }

    void survivesConditionsFile() {
        const QString directory = QStringLiteral("/tmp/programs");
        QDir().mkpath(directory);
        const QMap<QByteArray, int> rowsByContent{
            {"", 0}, {"{\"0\": ", 0}, {"[1, 2]", 0}, {R"({"0": 5, "7": {"Name": 3, "DataValues": "x"}})", 2}};
        for (auto file = rowsByContent.begin(); file != rowsByContent.end(); ++file) {
            if (!file.key().isEmpty())
                writeFile(directory + "/nvh_vsm.json", file.key());
            AppScreen screen(AppModeService, directory);
            QCOMPARE(screen.view<TableView>("mVsmTable")->rowCount(), file.value());
            screen.setSwitch("mVsmSwitch", "ON");
            if (file.value() == 2)
                QCOMPARE(screen.text("mVsmStatus1"), QString("AUTO"));
        }
    }
};

QTEST_MAIN(TestLayout)
#include "tst_layout.moc"
