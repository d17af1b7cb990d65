#include "nvh/ui/SideClips.h"

#include "nvh/ui/NVHAppView.h"
#include "nvh/ui/Screen.h"

#include <HelixDash/views/ButtonView.h>
#include <HelixDash/views/SpinnerView.h>

namespace {

constexpr int kAmbientMs = 3500;
constexpr int kNotesMs = 10000;
constexpr int kReminderMs = 2000;

}  // namespace

SideClips::SideClips(NVHAppView& view, Screen& screen, NVHWorker& worker)
    : mView(view), mScreen(screen), mWorker(worker) {}

void SideClips::startAmbient() {
    QObject::disconnect(mScreen.mAmbientButton, &ControlBase::released, &mView,
                        &NVHAppView::ambientNoiseButtonReleased);
    mScreen.apply(&ControlRow::ambientTouched);  // for its look; it is not connected
    mReminderTimer.start(kAmbientMs, &mView, &NVHAppView::stopAmbientNoiseRecording);
    start(RecordingAmbient, mScreen.mAmbientButton, "Recording", mScreen.mAmbientSpinner);
}

void SideClips::stopAmbient() {
    stop(RecordingAmbient, mScreen.mAmbientSpinner);
    QObject::connect(mScreen.mAmbientButton, &ControlBase::released, &mView, &NVHAppView::ambientNoiseButtonReleased,
                     Qt::UniqueConnection);
}

void SideClips::startNote() {
    QObject::disconnect(mScreen.mNotesButton, &ControlBase::released, &mView, &NVHAppView::notesRecordButtonReleased);
    mNotesTimer.setSingleShot(true);
    mNotesTimer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&mNotesTimer, &QTimer::timeout, &mView, &NVHAppView::stopNotesRecording, Qt::UniqueConnection);
    mReminderTimer.start(kReminderMs, &mView, &NVHAppView::remindUserToStopNotes);
    mNotesTimer.start(kNotesMs);
    start(RecordingNotes, mScreen.mNotesButton, "Speak Now!", mScreen.mNotesSpinner);
}

// Until now a tap does nothing, so that the one that started the note cannot end it.
void SideClips::remindOfNote() {
    mScreen.mNotesButton->setLabel(QStringLiteral("Tap when done!"));
    QObject::connect(mScreen.mNotesButton, &ControlBase::released, &mView, &NVHAppView::stopNotesRecording,
                     Qt::UniqueConnection);
}

void SideClips::stopNote() {
    mNotesTimer.stop();
    mReminderTimer.stop();
    QObject::disconnect(&mNotesTimer, &QTimer::timeout, &mView, &NVHAppView::stopNotesRecording);
    QObject::disconnect(mScreen.mNotesButton, &ControlBase::released, &mView, &NVHAppView::stopNotesRecording);
    stop(RecordingNotes, mScreen.mNotesSpinner);
    QObject::connect(mScreen.mNotesButton, &ControlBase::released, &mView, &NVHAppView::notesRecordButtonReleased,
                     Qt::UniqueConnection);
}

void SideClips::start(RECORDING_TYPE type, ButtonView* button, const char* label, SpinnerView* spinner) {
    button->setButtonColor(ButtonView::Recording);
    button->setLabel(QString::fromLatin1(label));
    spinner->show(true);
    mState = State::WaitingForRecorder;
    mType = type;
    mStatusBefore = mScreen.status();
    mWorker.startAudioRecording();
    enableControls();
}

void SideClips::recorderStarted() {
    mState = State::Recording;
    enableControls();
}

void SideClips::enableControls() {
    mScreen.apply(mType == RecordingNotes ? &ControlRow::noteRuns : &ControlRow::timed);
}

void SideClips::stop(RECORDING_TYPE type, SpinnerView* spinner) {
    mWorker.stopAudioRecording();
    // Where the recorder never came to the clip, the capture is that of the test recording, which is still being
    // completed.
    if (mState == State::Recording)
        mWorker.processRecording(type);
    if (isUnderWay())
        mScreen.setStatus(mStatusBefore);
    mState = State::None;
    spinner->show(false);
}
