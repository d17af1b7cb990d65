#pragma once

#include "nvh/engine/NVHWorker.h"
#include "nvh/ui/StatusTexts.h"

#include <HelixDash/services/SingleShotTimer.h>

#include <QTimer>

class ButtonView;
class NVHAppView;
class Screen;
class SpinnerView;

// The two side recordings, a sample of the cabin's noise and a spoken note: their buttons, times and files. One is
// under way at a time. What else may be touched meanwhile is the view's business, whose slots these are; each slot's
// part here is called in a mode that has the buttons.
//
// UI thread; nothing blocks. Destroyed in the middle of a clip it leaves the recorder to the engine.
class SideClips {
public:
    // All three outlive this object.
    SideClips(NVHAppView& view, Screen& screen, NVHWorker& worker);

    // True from the touch that begins a clip to its end.
    bool isUnderWay() const { return mState != State::None; }

    // ambientNoiseButtonReleased() and stopAmbientNoiseRecording(), which the clip's timer calls after 3.5 s.
    void startAmbient();
    void stopAmbient();

    // notesRecordButtonReleased(); remindUserToStopNotes() after 2 s, from when on a tap ends the note; and
    // stopNotesRecording(), called by the tap or after 10 s.
    void startNote();
    void remindOfNote();
    void stopNote();

    // The engine's startUpdating(): the recorder runs, at once or when that of the last run is gone.
    void recorderStarted();

private:
    enum class State { None, WaitingForRecorder, Recording };

    void start(RECORDING_TYPE type, ButtonView* button, const char* label, SpinnerView* spinner);
    void stop(RECORDING_TYPE type, SpinnerView* spinner);
    void enableControls();

    NVHAppView& mView;
    Screen& mScreen;
    NVHWorker& mWorker;
    QTimer mNotesTimer;
    SingleShotTimer mReminderTimer;  // ends the ambient clip, or reminds of the note that is being spoken
    State mState = State::None;
    RECORDING_TYPE mType = RecordingAmbient;
    StatusText mStatusBefore;  // to be put back at the clip's end
};
