#pragma once

#include "nvh/Export.h"
#include "nvh/controls/STWControlsUser.h"
#include "nvh/engine/NVHWorker.h"

#include <HelixDash/views/DisplayView.h>

#include <QElapsedTimer>
#include <QList>
#include <QMap>
#include <QProcess>
#include <QTimer>
#include <QVariantMap>

#include <memory>

class BrakesAndDVControllableButton;
class ButtonView;
class DVControllable;
class DropDownPicker;
class LabelView;
class NVHModeHandler;
class ScrollableView;
class SlideSwitch;
class SpinnerView;
class SwitchControl;
class TableView;
class VertSlideSwitch;
class vdtTableController;
class vsmTableController;

// The recorder's screen and its controller in one application mode, with an engine of its own.
//
// What the driver may do follows from what is enabled; there is no other state than that. The ways through a test run:
//
//     ready (initState) -> Start -> waiting -> recording (stateTwo) -> recorded (stateThree) -> Save, Upload -> ready
//                                                                                           -> Discard -> ready
//
// Everything runs on the UI thread and nothing waits but NVHWorker::stop(). Destroying the view ends whatever goes on
// in it: recording, upload, download, steering-wheel control.
//
// The slots' order is part of the interface: they can be called by name.
class NVH_EXPORT NVHAppView : public DisplayView, public STWControlsUser {
    Q_OBJECT
public:
    NVHAppView(DisplayView* parent, AppMode mode);
    ~NVHAppView() override;

    NVHWorker& engine() { return mWorker; }

    // The chosen test type's display name; "Service" where there is nothing to choose.
    QString getTestType() const;
    bool isBrakeSquealTest() const;

    void shown() override;
    void hidden() override;

    void stwControlsAcquired() override;
    void stwControlsYielded() override;
    void stwControlsLost() override;

public slots:
    void updateAdditionalButtons();
    void ambientNoiseButtonReleased();
    void notesRecordButtonReleased();
    void stopAmbientNoiseRecording();
    void stopNotesRecording();
    void resumeButtonAction();
    void startButtonAction();
    void stopButtonAction();
    void remindUserToStopNotes();
    void uploadButtonReleased();
    void discardButtonReleased();
    void saveButtonReleased();
    void uploadSavedButtonReleased();
    void clunkButtonToggled();
    void resultsReady(bool pass);
    // Only where there is a duration to choose.
    int getSliderDurationPos();
    bool getClunkButtonState();
    void setUploadNum();
    void updateUploadAndSavedNum();
    void initState();
    void updateTimeCounter();
    void updateMotorRPM();
    // Characters that Latin-1 does not have are shown as '?'.
    void updateFeedbackLabel(QString response);
    void clearFeedbackLabel();
    void showPackagingStatus();
    void packageFailStatus();
    void endPackagingStatus();
    void uploadStartStatus();
    void uploadFinishedStatus();
    void uploadFailedStatus();
    void metaUploadStartStatus();
    void metaUploadFinishedStatus();
    void metaUploadFailedStatus();
    // Latin-1.
    void handleError(const char* errorString);
    void fatalError();
    void noCanDataAlert();
    void startUpdating();
    void actuallyStop();
    void startBrakeTestRecording();
    void downloadVdtStatic();
    void initVdtTable();
    void vsmControlsToggledByUser();
    void stwControlsToggledByUser();
    void brakePedalControlToggledByUser(int state);

protected:
    void childEvent(QChildEvent* event) override;

private:
    struct Layout;
    enum class Clip { None, Ambient, Notes };
    struct Status {
        QString text;
        QString color;
        int x = 0;
    };

    // The screen: NVHAppViewLayout.cpp.
    void init();
    void buildWidgets();
    void placeSwitches();
    void connectSwitches();
    void connectEngine();
    void LayoutCentreButtons();
    void customizeForVDT();
    void customizeForService();
    void moveFeedbackToLeftColumn();
    void fitFeedback();
    void removeTestTypeSwitch();
    void setLabel(LabelView* label, const char* text, const char* color);
    void setLabel(LabelView* label, const char* text, const char* color, quint16 x, quint16 y);

    // Recording: NVHAppViewRecording.cpp.
    void EnableStartStopButton(ButtonView* which);
    void setSliders(bool on);
    void disableAllInteractions();
    void stateTwo();
    void stateThree();
    void setStatus(const char* text, const char* color, int x);
    void makeManual();
    bool recordingHasControls();

    // Uploads: NVHAppViewResults.cpp.
    void packResults(bool saveOnly, const char* status, const char* color);
    void setSavedNum();
    void returnToReady();
    void updateWhenRecorderIsGone();

    // Side recordings: NVHAppViewClips.cpp.
    void showClip(ButtonView* button, const char* label, SpinnerView* spinner);
    void startClip(Clip clip);
    void endClip(RECORDING_TYPE type);
    void keepClipControls();

    // Interruptions: NVHAppViewInterruption.cpp.
    void saveState();
    void restoreState();
    void disableEverything();
    void interrupt();

    // Tables: NVHAppViewTables.cpp.
    void initVSMTable();
    void showVdtTests(const QVariantMap& tests);

    void logSlot(const char* name) const;

    QTimer mNotesTimer;
    SingleShotTimer mReminderTimer;  // ends the ambient clip, or reminds of the note that is being spoken
    SingleShotTimer mDurationTimer;
    SingleShotTimer mTimeCounterTimer;
    SingleShotTimer mRpmTimer;
    NVHWorker mWorker;
    TableView* mVdtTable = nullptr;  // all views and controllers here: children of this view, null where there is none
    vdtTableController* mVdtController = nullptr;
    TableView* mVsmTable = nullptr;
    vsmTableController* mVsmController = nullptr;
    QMap<const QObject*, bool> mSavedEnabled;  // by child view, as they were when the screen was interrupted
    QMap<const QObject*, bool> mSavedVisible;
    QList<DVControllable*> mBoundWidgets;
    std::shared_ptr<NVHModeHandler> mModeHandler;  // while the steering wheel controls the screen
    AppMode mMode;
    quint32 mMotorRpm = 0;
    bool mResultsDiscarded = false;

    QElapsedTimer mRecordingClock;
    QProcess* mVdtStaticDownloadProcess = nullptr;  // a child; while a download is under way
    bool mWaitingForBrake = false;
    Clip mClip = Clip::None;
    bool mClipStarted = false;
    Status mStatusBeforeClip;

    ButtonView* mAmbientButton = nullptr;
    SpinnerView* mAmbientSpinner = nullptr;
    ButtonView* mNotesButton = nullptr;
    SpinnerView* mNotesSpinner = nullptr;
    LabelView* mStatusLabel = nullptr;
    LabelView* mUploadStatusLabel = nullptr;
    ButtonView* mResumeButton = nullptr;
    ButtonView* mStartButton = nullptr;
    BrakesAndDVControllableButton* mStopButton = nullptr;
    LabelView* mRpmCaption = nullptr;
    LabelView* mRpmLabel = nullptr;
    LabelView* mCanAlertLabel = nullptr;
    ButtonView* mUploadButton = nullptr;
    ButtonView* mSaveButton = nullptr;
    ButtonView* mDiscardButton = nullptr;
    ButtonView* mUploadAllButton = nullptr;
    ButtonView* mReloadVdtButton = nullptr;
    ButtonView* mClearFeedbackButton = nullptr;
    LabelView* mDurationCaption = nullptr;
    VertSlideSwitch* mDurationSwitch = nullptr;
    LabelView* mTestTypeCaption = nullptr;
    SwitchControl* mTestTypeSwitch = nullptr;
    SlideSwitch* mBrakeSwitch = nullptr;
    LabelView* mBrakeCaption = nullptr;
    SlideSwitch* mStwSwitch = nullptr;
    LabelView* mStwCaption = nullptr;
    LabelView* mTimeLabel = nullptr;
    LabelView* mMicChannelCaption = nullptr;
    LabelView* mFreqResCaption = nullptr;
    ScrollableView* mFeedbackArea = nullptr;
    LabelView* mFeedbackLabel = nullptr;
    DropDownPicker* mMicChannelPicker = nullptr;
    DropDownPicker* mFreqResPicker = nullptr;
    ButtonView* mClunkButton = nullptr;
    LabelView* mVdtCaption = nullptr;
    LabelView* mVsmCaption = nullptr;
    LabelView* mVsmAutoCaption = nullptr;
    SlideSwitch* mVsmSwitch = nullptr;
    LabelView* mFeedbackTitle = nullptr;
};
