// One recording: start and stop, the clock, the verdict; and the side recordings.

#include "nvh/controls/BrakesAndDVControllableButton.h"
#include "nvh/controls/VertSlideSwitch.h"
#include "nvh/ui/NVHAppView.h"
#include "nvh/ui/RunClock.h"
#include "nvh/ui/Screen.h"
#include "nvh/ui/SideClips.h"
#include "nvh/vehicle/VehicleSignals.h"

#include <HelixDash/services/Logger.h>
#include <HelixDash/views/DropDownPicker.h>

namespace {

constexpr int kLongestRecordingSecs = 700;
constexpr int kClockMs = 1000;
constexpr int kRpmMs = 500;

double vehicleSpeed() {
    return VehicleSignals::kSpeed.valueOr(0.0);
}

}  // namespace

QString NVHAppView::getTestType() const {
    if (mMode == AppModeService)
        return QStringLiteral("Service");
    return mScreen->mTestTypeSwitch->labelAt(mScreen->mTestTypeSwitch->position());
}

bool NVHAppView::isBrakeSquealTest() const {
    return getTestType() == QLatin1String("Brake Squeal");
}

int NVHAppView::getSliderDurationPos() {
    return mScreen->mDurationSwitch->position();
}

bool NVHAppView::getClunkButtonState() {
    return mScreen->mClunkButton->isOn();
}

void NVHAppView::clunkButtonToggled() {
    logSlot(__func__);
    mScreen->mClunkButton->setLabel(mScreen->mClunkButton->isOn() ? QStringLiteral("Anti Torque Reversal Off")
                                                                  : QStringLiteral("Anti Torque Reversal On"));
}

// However long the driver has chosen, a brake squeal test lasts until it is stopped.
void NVHAppView::makeManual() {
    mWorker.setSliderDurationPosition(0);
    if (mScreen->mDurationSwitch)
        mScreen->mDurationSwitch->setPosition(0);
}

void NVHAppView::startButtonAction() {
    logSlot(__func__);
    mScreen->apply(&ControlRow::stopOnly);
    Logger(this, "INFO") << "Vehicle Speed:" << vehicleSpeed();
    enter(ScreenState::Waiting);
    mScreen->setUploadStatus(UploadStatus::NothingUploaded);
    mScreen->setStatus(Status::WaitingForAck);

    mWorker.setClunkButtonState(getClunkButtonState());
    mWorker.setTestType(getTestType());
    if (mScreen->mDurationSwitch)
        mWorker.setSliderDurationPosition(getSliderDurationPos());

    if (isBrakeSquealTest() && vehicleSpeed() > 0.0) {
        Logger(this, "INFO") << "Initializing Brake Squeal Test";
        enter(ScreenState::WaitingForBrake);
        makeManual();
        mScreen->setStatus(Status::WaitingForBrake);
        dvConnect(VehicleSignals::kBrakePedal.find(), this, &NVHAppView::startBrakeTestRecording, Qt::UniqueConnection);
        return;
    }
    if (isBrakeSquealTest()) {
        // There is nothing to squeal; what is recorded must not pass for a brake squeal test.
        mScreen->setUploadStatus(UploadStatus::ManualRecording);
        makeManual();
        mWorker.setTestType(QStringLiteral("Invalid"));
    }
    mWorker.setMicChannel(mScreen->mMicChannelPicker->choice());
    mWorker.setFreqResolution(mScreen->mFreqResPicker->choice());
    mWorker.start();
}

void NVHAppView::startBrakeTestRecording() {
    BoolDataValue* pedal = VehicleSignals::kBrakePedal.find();
    {
        const DataValue::ConditionalLocker locker(pedal);
        if (!pedal || !pedal->isValid() || !pedal->value())
            return;
    }
    logSlot(__func__);
    dvDisconnect(pedal, this);
    mWorker.start();
}

void NVHAppView::stopButtonAction() {
    logSlot(__func__);
    mWorker.stop();
}

void NVHAppView::startUpdating() {
    logSlot(__func__);
    mScreen->setStatus(Status::Recording);
    if (mState == ScreenState::Clip) {
        mScreen->apply(&ControlRow::stateTwo);
        mClips->recorderStarted();
        return;
    }
    enter(ScreenState::Recording);
    if (mScreen->mDurationSwitch && getSliderDurationPos() != 0) {
        mScreen->apply(&ControlRow::timed);
        mClock->mDurationTimer.start(mWorker.getDuration() * 1000, this, &NVHAppView::stopButtonAction);
    }
    mClock->mRecordingClock.start();
    updateTimeCounter();
    updateMotorRPM();
}

void NVHAppView::updateTimeCounter() {
    if (!mWorker.isRunning())
        return;
    const int seconds = int(double(mClock->mRecordingClock.elapsed()) / 1000.0);
    if (seconds >= kLongestRecordingSecs) {
        stopButtonAction();
        return;
    }
    mScreen->setLabel(mScreen->mTimeLabel, qPrintable(QStringLiteral("%1 s").arg(seconds)), "battery/green");
    mClock->mTimeCounterTimer.start(kClockMs, this, &NVHAppView::updateTimeCounter);
}

void NVHAppView::updateMotorRPM() {
    if (!mWorker.isRunning())
        return;
    const int rpm = mWorker.getMotorRPM();
    mClock->mMotorRpm = quint32(rpm);
    mScreen->setLabel(mScreen->mRpmLabel, qPrintable(QString::number(rpm)), "black");
    mClock->mRpmTimer.start(kRpmMs, this, &NVHAppView::updateMotorRPM);
}

void NVHAppView::actuallyStop() {
    logSlot(__func__);
    // However the recording ended, what was to end it must not reach into the next one.
    mClock->mDurationTimer.stop();
    mScreen->setStatus(Status::RecordingDone);
    enter(ScreenState::Recorded);
}

void NVHAppView::resultsReady(bool pass) {
    logSlot(__func__);
    if (mResultsDiscarded) {
        mScreen->setStatus(Status::Waiting);
        return;
    }
    Logger(this, "INFO") << "Test passed:" << (pass ? "true" : "false");
    mScreen->setStatus(pass ? Status::Pass : Status::Fail);
}

void NVHAppView::noCanDataAlert() {
    logSlot(__func__);
    mScreen->setLabel(mScreen->mCanAlertLabel, "CAN Signals Unavailable", "battery/red");
}

void NVHAppView::ambientNoiseButtonReleased() {
    logSlot(__func__);
    if (!mScreen->mAmbientButton || mClips->isUnderWay())
        return;
    enter(ScreenState::Clip);
    mClips->startAmbient();
}

void NVHAppView::stopAmbientNoiseRecording() {
    logSlot(__func__);
    if (!mScreen->mAmbientButton)
        return;
    mClips->stopAmbient();
    initState();
    updateWhenRecorderIsGone();
}

void NVHAppView::notesRecordButtonReleased() {
    logSlot(__func__);
    if (!mScreen->mNotesButton || mClips->isUnderWay())
        return;
    enter(ScreenState::Clip);
    mClips->startNote();
}

void NVHAppView::remindUserToStopNotes() {
    logSlot(__func__);
    if (mScreen->mNotesButton)
        mClips->remindOfNote();
}

void NVHAppView::stopNotesRecording() {
    logSlot(__func__);
    if (!mScreen->mNotesButton)
        return;
    mClips->stopNote();
    initState();
    updateWhenRecorderIsGone();
}

void NVHAppView::brakePedalControlToggledByUser(int state) {
    logSlot(__func__);
    if (state == 1)
        mScreen->mStopButton->enableBrakesControl();
    else
        mScreen->mStopButton->disableBrakesControl();
}
