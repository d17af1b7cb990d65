// One recording: what may be touched in each state, start and stop, the clock, the verdict.

#include "nvh/controls/BrakesAndDVControllableButton.h"
#include "nvh/controls/VertSlideSwitch.h"
#include "nvh/ui/NVHAppView.h"

#include <HelixDash/services/Logger.h>
#include <HelixDash/values/DataValueManager.h>
#include <HelixDash/views/DropDownPicker.h>
#include <HelixDash/views/LabelView.h>

#include <initializer_list>

namespace {

constexpr int kLongestRecordingSecs = 700;
constexpr int kClockMs = 1000;
constexpr int kRpmMs = 500;

BoolDataValue* brakePedal() {
    return DataValueManager::instance().find<BoolDataValue>("VAPI_brakePedal");
}

double vehicleSpeed() {
    const auto* speed = DataValueManager::instance().find<RealDataValue>("VAPI_signedVehicleSpeed");
    const DataValue::StateLocker locker(speed);
    return speed ? speed->value() : 0.0;
}

// Null for what the mode does not have.
void enableAll(std::initializer_list<DisplayView*> views, bool on) {
    for (DisplayView* view : views) {
        if (view)
            view->enable(on);
    }
}

}  // namespace

void NVHAppView::EnableStartStopButton(ButtonView* which) {
    for (ButtonView* button : {mStartButton, static_cast<ButtonView*>(mStopButton)}) {
        button->enable(button == which);
        button->show(button == which);
    }
}

void NVHAppView::setSliders(bool on) {
    enableAll({mTestTypeSwitch, mDurationSwitch, mClunkButton, mMicChannelPicker, mFreqResPicker}, on);
}

void NVHAppView::disableAllInteractions() {
    enableAll({mAmbientButton, mNotesButton, mStartButton, mStopButton, mUploadButton, mDiscardButton, mSaveButton,
               mUploadAllButton, mReloadVdtButton, mClearFeedbackButton},
              false);
    setSliders(false);
}

void NVHAppView::initState() {
    EnableStartStopButton(mStartButton);
    enableAll({mUploadAllButton, mReloadVdtButton, mClearFeedbackButton}, true);
    setSliders(true);
    enableAll({mStopButton, mUploadButton, mDiscardButton, mSaveButton}, false);
    for (LabelView* label : {mUploadStatusLabel, mTestTypeCaption, mDurationCaption, mTimeLabel, mRpmCaption, mRpmLabel,
                             mMicChannelCaption, mFreqResCaption, mVdtCaption}) {
        if (label)
            label->setSkinColor("black");
    }
    setLabel(mCanAlertLabel, "-", "battery/red");
    mMotorRpm = quint32(mWorker.getMotorRPM());
    updateAdditionalButtons();
}

void NVHAppView::stateTwo() {
    EnableStartStopButton(mStopButton);
    enableAll(
        {mAmbientButton, mNotesButton, mStartButton, mUploadButton, mDiscardButton, mSaveButton, mUploadAllButton},
        false);
    setSliders(false);
}

void NVHAppView::stateThree() {
    updateAdditionalButtons();
    enableAll({mUploadButton, mSaveButton, mDiscardButton}, true);
    enableAll({mStartButton, mStopButton, mUploadAllButton}, false);
    setSliders(false);
}

void NVHAppView::updateAdditionalButtons() {
    logSlot(__func__);
    const NvhPackageManager& packages = mWorker.packageManager();
    const bool ambientExists = packages.ambientSoundRecordingExists();
    const bool notesExist = packages.notesRecordingExists();
    const bool recordingExists = packages.soundRecordingExists();
    const auto showSideRecording = [](ButtonView* button, bool exists, const char* saved, const char* record) {
        if (!button)
            return;
        button->setButtonColor(exists ? ButtonView::Saved : ButtonView::Normal);
        button->setLabel(QString::fromLatin1(exists ? saved : record));
    };
    showSideRecording(mAmbientButton, ambientExists, "Ambient Saved", "Record Ambient");
    showSideRecording(mNotesButton, notesExist, "Notes Saved", "Record Notes");
    if (recordingExists)
        enableAll({mUploadButton, mSaveButton}, true);
    enableAll({mNotesButton, mAmbientButton}, true);
    if (ambientExists || notesExist || recordingExists)
        mDiscardButton->enable(true);
}

QString NVHAppView::getTestType() const {
    if (mMode == AppModeService)
        return QStringLiteral("Service");
    return mTestTypeSwitch->labelAt(mTestTypeSwitch->position());
}

bool NVHAppView::isBrakeSquealTest() const {
    return getTestType() == QLatin1String("Brake Squeal");
}

int NVHAppView::getSliderDurationPos() {
    return mDurationSwitch->position();
}

bool NVHAppView::getClunkButtonState() {
    return mClunkButton->isOn();
}

void NVHAppView::clunkButtonToggled() {
    logSlot(__func__);
    mClunkButton->setLabel(mClunkButton->isOn() ? QStringLiteral("Anti Torque Reversal Off")
                                                : QStringLiteral("Anti Torque Reversal On"));
}

void NVHAppView::setStatus(const char* text, const char* color, int x) {
    setLabel(mStatusLabel, text, color, quint16(x), quint16(mStatusLabel->top()));
}

// However long the driver has chosen, a brake squeal test lasts until it is stopped.
void NVHAppView::makeManual() {
    mWorker.setSliderDurationPosition(0);
    if (mDurationSwitch)
        mDurationSwitch->setPosition(0);
}

void NVHAppView::startButtonAction() {
    logSlot(__func__);
    EnableStartStopButton(mStopButton);
    Logger(this, "INFO") << "Vehicle Speed:" << vehicleSpeed();
    disableAllInteractions();
    setLabel(mUploadStatusLabel, "| Files Uploaded: -", "black");
    setStatus("Waiting for ACK ", "black", 350);

    mWorker.setClunkButtonState(getClunkButtonState());
    mWorker.setTestType(getTestType());
    if (mDurationSwitch)
        mWorker.setSliderDurationPosition(getSliderDurationPos());

    if (isBrakeSquealTest() && vehicleSpeed() > 0.0) {
        Logger(this, "INFO") << "Initializing Brake Squeal Test";
        EnableStartStopButton(mStopButton);
        makeManual();
        setStatus("Waiting for Brake", "battery/red", 340);
        mWaitingForBrake = true;
        dvConnect(brakePedal(), this, &NVHAppView::startBrakeTestRecording, Qt::UniqueConnection);
        return;
    }
    if (isBrakeSquealTest()) {
        // There is nothing to squeal; what is recorded must not pass for a brake squeal test.
        setLabel(mUploadStatusLabel, "| Manual Recording", "battery/red");
        makeManual();
        mWorker.setTestType(QStringLiteral("Invalid"));
    }
    mWorker.setMicChannel(mMicChannelPicker->choice());
    mWorker.setFreqResolution(mFreqResPicker->choice());
    mWorker.start();
}

void NVHAppView::startBrakeTestRecording() {
    BoolDataValue* pedal = brakePedal();
    {
        const DataValue::ConditionalLocker locker(pedal);
        if (!pedal->isValid() || !pedal->value())
            return;
    }
    logSlot(__func__);
    dvDisconnect(pedal, this);
    mWaitingForBrake = false;
    mWorker.start();
}

void NVHAppView::stopButtonAction() {
    logSlot(__func__);
    mWorker.stop();
}

void NVHAppView::startUpdating() {
    logSlot(__func__);
    setStatus("Recording ", "black", 415);
    stateTwo();
    if (mClip != Clip::None) {
        mClipStarted = true;
        keepClipControls();
        return;
    }
    if (mDurationSwitch && getSliderDurationPos() != 0) {
        mStopButton->enable(false);
        mDurationTimer.start(mWorker.getDuration() * 1000, this, &NVHAppView::stopButtonAction);
    }
    mRecordingClock.start();
    updateTimeCounter();
    updateMotorRPM();
}

void NVHAppView::updateTimeCounter() {
    if (!mWorker.isRunning())
        return;
    const int seconds = int(double(mRecordingClock.elapsed()) / 1000.0);
    if (seconds >= kLongestRecordingSecs) {
        stopButtonAction();
        return;
    }
    setLabel(mTimeLabel, qPrintable(QStringLiteral("%1 s").arg(seconds)), "battery/green");
    mTimeCounterTimer.start(kClockMs, this, &NVHAppView::updateTimeCounter);
}

void NVHAppView::updateMotorRPM() {
    if (!mWorker.isRunning())
        return;
    const int rpm = mWorker.getMotorRPM();
    mMotorRpm = quint32(rpm);
    setLabel(mRpmLabel, qPrintable(QString::number(rpm)), "black");
    mRpmTimer.start(kRpmMs, this, &NVHAppView::updateMotorRPM);
}

void NVHAppView::actuallyStop() {
    logSlot(__func__);
    // However the recording ended, what was to end it must not reach into the next one.
    mDurationTimer.stop();
    setStatus("Recording done!", "battery/blue", 350);
    stateThree();
}

void NVHAppView::resultsReady(bool pass) {
    logSlot(__func__);
    if (mResultsDiscarded) {
        setStatus("Waiting", "black", 445);
        return;
    }
    Logger(this, "INFO") << "Test passed:" << (pass ? "true" : "false");
    if (pass)
        setStatus("PASS ", "battery/green", 480);
    else
        setStatus("FAIL ", "battery/red", 480);
}

void NVHAppView::noCanDataAlert() {
    logSlot(__func__);
    setLabel(mCanAlertLabel, "CAN Signals Unavailable", "battery/red");
}

bool NVHAppView::recordingHasControls() {
    return mWorker.isRunning() || mWaitingForBrake || mClip != Clip::None;
}

void NVHAppView::brakePedalControlToggledByUser(int state) {
    logSlot(__func__);
    if (state == 1)
        mStopButton->enableBrakesControl();
    else
        mStopButton->disableBrakesControl();
}
