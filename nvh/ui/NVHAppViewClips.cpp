// The two side recordings: a sample of the cabin's noise and a spoken note.

#include "nvh/controls/BrakesAndDVControllableButton.h"
#include "nvh/ui/NVHAppView.h"

#include <HelixDash/views/LabelView.h>
#include <HelixDash/views/SpinnerView.h>

namespace {

constexpr int kAmbientMs = 3500;
constexpr int kNotesMs = 10000;
constexpr int kReminderMs = 2000;

}  // namespace

void NVHAppView::ambientNoiseButtonReleased() {
    logSlot(__func__);
    if (!mAmbientButton)
        return;
    disconnect(mAmbientButton, &ControlBase::released, this, &NVHAppView::ambientNoiseButtonReleased);
    disableAllInteractions();
    mAmbientButton->enable(true);  // for its look; it is not connected
    showClip(mAmbientButton, "Recording", mAmbientSpinner);
    mReminderTimer.start(kAmbientMs, this, &NVHAppView::stopAmbientNoiseRecording);
    startClip(Clip::Ambient);
}

void NVHAppView::stopAmbientNoiseRecording() {
    logSlot(__func__);
    if (!mAmbientButton)
        return;
    endClip(RecordingAmbient);
    mAmbientSpinner->show(false);
    connect(mAmbientButton, &ControlBase::released, this, &NVHAppView::ambientNoiseButtonReleased,
            Qt::UniqueConnection);
    initState();
    updateWhenRecorderIsGone();
}

void NVHAppView::notesRecordButtonReleased() {
    logSlot(__func__);
    if (!mNotesButton)
        return;
    disconnect(mNotesButton, &ControlBase::released, this, &NVHAppView::notesRecordButtonReleased);
    disableAllInteractions();
    showClip(mNotesButton, "Speak Now!", mNotesSpinner);
    mNotesTimer.setSingleShot(true);
    mNotesTimer.setTimerType(Qt::PreciseTimer);
    connect(&mNotesTimer, &QTimer::timeout, this, &NVHAppView::stopNotesRecording, Qt::UniqueConnection);
    mReminderTimer.start(kReminderMs, this, &NVHAppView::remindUserToStopNotes);
    mNotesTimer.start(kNotesMs);
    startClip(Clip::Notes);
}

// Until now a tap does nothing, so that the one that started the note cannot end it.
void NVHAppView::remindUserToStopNotes() {
    logSlot(__func__);
    if (!mNotesButton)
        return;
    mNotesButton->setLabel(QStringLiteral("Tap when done!"));
    connect(mNotesButton, &ControlBase::released, this, &NVHAppView::stopNotesRecording, Qt::UniqueConnection);
}

void NVHAppView::stopNotesRecording() {
    logSlot(__func__);
    if (!mNotesButton)
        return;
    mNotesTimer.stop();
    mReminderTimer.stop();
    disconnect(&mNotesTimer, &QTimer::timeout, this, &NVHAppView::stopNotesRecording);
    disconnect(mNotesButton, &ControlBase::released, this, &NVHAppView::stopNotesRecording);
    endClip(RecordingNotes);
    mNotesSpinner->show(false);
    connect(mNotesButton, &ControlBase::released, this, &NVHAppView::notesRecordButtonReleased, Qt::UniqueConnection);
    initState();
    updateWhenRecorderIsGone();
}

void NVHAppView::showClip(ButtonView* button, const char* label, SpinnerView* spinner) {
    button->setButtonColor(ButtonView::Recording);
    button->setLabel(QString::fromLatin1(label));
    spinner->show(true);
}

// The recorder starts at once, or as soon as the one of the last recording is gone; startUpdating() follows in either
// case.
void NVHAppView::startClip(Clip clip) {
    mClip = clip;
    mClipStarted = false;
    mStatusBeforeClip = {mStatusLabel->text(), mStatusLabel->skinColor(), mStatusLabel->left()};
    mWorker.startAudioRecording();
    keepClipControls();
}

void NVHAppView::keepClipControls() {
    if (mClip == Clip::Notes)
        mNotesButton->enable(true);
    mStopButton->enable(false);
}

void NVHAppView::endClip(RECORDING_TYPE type) {
    mWorker.stopAudioRecording();
    // Where the recorder never came to the clip, the capture is that of the test recording, which is still being
    // completed.
    if (mClipStarted)
        mWorker.processRecording(type);
    mStatusLabel->setText(mStatusBeforeClip.text);
    mStatusLabel->setSkinColor(mStatusBeforeClip.color);
    mStatusLabel->setLeft(mStatusBeforeClip.x);
    mClip = Clip::None;
}
