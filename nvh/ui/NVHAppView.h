#pragma once

#include "nvh/Export.h"
#include "nvh/controls/STWControlsUser.h"
#include "nvh/engine/NVHWorker.h"

#include <HelixDash/views/DisplayView.h>

#include <QVariantMap>

#include <memory>

class NVHModeHandler;
class Screen;
class SideClips;
class TestTables;
class VdtDownload;
enum class ScreenState;
enum class Status;
struct RunClock;
struct VdtAnswer;

// The recorder's screen and its controller in one application mode, with an engine of its own.
//
// What goes on is a ScreenState, and what the driver may do follows from it. The slots are the buttons', the timers'
// and the engine's; they may also be called by name, and their order is part of the interface. Each slot that serves a
// touch or a signal logs its name at "INFO".
//
// Everything runs on the UI thread. Nothing blocks but what says so.
class NVH_EXPORT NVHAppView : public DisplayView, public STWControlsUser {
    Q_OBJECT
public:
    // Made by the wrapper for the mode that was chosen: builds the screen, starts the download of the static tests
    // (not in the reduced recorder) and is ready.
    NVHAppView(DisplayView* parent, AppMode mode);
    // In any state: gives the steering wheel back and ends recording, packing, upload and download. Blocks as
    // destroying the engine does, and until a long list that is being read is read, see VdtDownload.
    ~NVHAppView() override;

    // The engine of this screen, which goes with it.
    NVHWorker& engine() { return mWorker; }

    // The chosen test type's display name; "Service" where there is nothing to choose.
    QString getTestType() const;
    // True if that is "Brake Squeal"; the Stop button asks it whether the pedal counts.
    bool isBrakeSquealTest() const;

    // The framework's word that the view has been shown: takes the steering wheel if the driver has switched that on,
    // and evaluates the Vehicle Status Monitor.
    void shown() override;
    // That it has been hidden: gives the wheel back.
    void hidden() override;

    // NVHModeHandler's word that it has taken the steering wheel: the bound widgets follow it.
    void stwControlsAcquired() override;
    // That it gives the wheel back: they no longer do.
    void stwControlsYielded() override;
    // That somebody else has taken it: they no longer do, and the screen is interrupted. Nothing can be touched but the
    // resume button; what goes on goes on.
    void stwControlsLost() override;

public slots:
    // Looks which recordings there are: the side recordings' buttons say so and can be touched, Upload, Save and
    // Discard can be touched where there is something. Part of becoming ready and of a run's end; nothing is disabled.
    void updateAdditionalButtons();
    // The driver begins a sample of the cabin's noise; everything else is disabled until its end. Does nothing while
    // there is a side recording, and in the mode without these buttons.
    void ambientNoiseButtonReleased();
    // The same for a spoken note.
    void notesRecordButtonReleased();
    // The end of the sample, after 3.5 s: asks the recorder to end, files the clip, puts the status back; the screen is
    // ready. Does not wait for the recorder.
    void stopAmbientNoiseRecording();
    // The same for the note, by a tap or after 10 s.
    void stopNotesRecording();
    // The driver comes back after an interruption: takes the wheel again, and every view gets the state it had then,
    // whatever has become of it meanwhile. The feedback tells of a list of tests that came in behind the cover.
    void resumeButtonAction();
    // The driver starts a run: hands the choices to the engine and starts it; startUpdating() follows, or the end of
    // the run. A brake squeal test of a moving car waits for the brake first, without a time-out; of a standing one it
    // is recorded as a manual run of the type "Invalid".
    void startButtonAction();
    // The driver, the duration's timer or the clock ends the run; actuallyStop() follows at once. Blocks as
    // NVHWorker::stop() does: at most 500 ms for each capture thread. Only a log line where nothing runs.
    void stopButtonAction();
    // 2 s after a note was begun: says that a tap ends it, and from now on it does.
    void remindUserToStopNotes();
    // The driver has the recording uploaded: writes down his marks and has the engine pack it. Everything is disabled
    // until it is decided what becomes of this package. Marks that cannot be written are told of in the feedback and do
    // not keep the recording from being packed.
    void uploadButtonReleased();
    // He has it deleted; the screen is ready. Verdicts that come later are not shown until the next Save or Upload.
    void discardButtonReleased();
    // As uploadButtonReleased(), but the package is kept.
    void saveButtonReleased();
    // "Upload All": has all saved packages uploaded, and disables everything until the first outcome. Without one it
    // only shows the count.
    void uploadSavedButtonReleased();
    // After a touch of the clunk button: its label names what the next one does.
    void clunkButtonToggled();
    // The engine's finished(): shows the verdict, "Waiting" instead of one on a discarded recording.
    void resultsReady(bool pass);
    // Position of the duration's switch, 0 (manual) to 7. Only where there is a duration to choose.
    int getSliderDurationPos();
    // True if the driver has switched torque reversal off.
    bool getClunkButtonState();
    // An upload's or a save's outcome: shows the count; the screen is ready, unless the driver is in the middle of a
    // run or a clip, is offered a recording, or waits for another package that he has just had packed.
    void setUploadNum();
    // The same, and the number of saved packages: fileSaved().
    void updateUploadAndSavedNum();
    // Makes the screen ready, whatever it was in the middle of.
    void initState();
    // The recording's clock, once a second while the engine runs: shows the seconds, and stops the run at 700 (blocks
    // then, see stopButtonAction()).
    void updateTimeCounter();
    // Shows the motor's speed, twice a second while the engine runs.
    void updateMotorRPM();
    // Replaces the feedback, for the engine and the package manager. Characters that Latin-1 does not have are shown as
    // '?'.
    void updateFeedbackLabel(QString response);
    // Empties it: "Clear Feedback".
    void clearFeedbackLabel();
    // The package manager's packagingStart(): a text.
    void showPackagingStatus();
    // Its packagingFailure(): a text. No outcome; another signal follows.
    void packageFailStatus();
    // Its packagingSuccess(): for a package that is kept a text and the number of saved packages.
    void endPackagingStatus();
    // Its packageUploadStart(): a text, for a package that is not only kept.
    void uploadStartStatus();
    // Its packageUploadSuccess(): an outcome, see setUploadNum(), and the number of saved packages.
    void uploadFinishedStatus();
    // Its packageUploadFailure(): an outcome.
    void uploadFailedStatus();
    // Its metadataUploadStart(): a text.
    void metaUploadStartStatus();
    // Its metadataUploadSuccess(): an outcome, and the number of saved packages.
    void metaUploadFinishedStatus();
    // Its metadataUploadFailure(): a text. No outcome; that of the upload came before.
    void metaUploadFailedStatus();
    // For callers by name: logs an error (Latin-1) and shows it on the upload-status label, no more.
    void handleError(const char* errorString);
    // The package manager's packageManagerFailure(), which is connected twice: an outcome, shown as a fatal error.
    void fatalError();
    // The engine's ackFailed_Relay(): writes to a label that no mode shows.
    void noCanDataAlert();
    // The engine's word that the recorder has been started, for a run or a clip: starts the clock, and the timer of a
    // timed run, which cannot be stopped from the screen.
    void startUpdating();
    // The engine's endRecording(): the run is offered to be saved, uploaded or discarded.
    void actuallyStop();
    // The brake pedal has changed while a brake squeal test waits for it: pressed, it starts the engine.
    void startBrakeTestRecording();
    // Fetches the list of static tests again, and removes the one before: at first, and by "Reload VDT Static". One
    // more log line where a download is under way. Nothing in the reduced recorder.
    void downloadVdtStatic();
    // The download has ended: shows its list, or the built-in one with the answer in the feedback. A long list is shown
    // later, when it has been read; one that cannot be read is shown empty, with an error in the log.
    void initVdtTable();
    // The driver hands audio and climate over to automatic control, or takes them back: the first two conditions show
    // it, and a popup says what it means.
    void vsmControlsToggledByUser();
    // The driver takes the steering wheel for the recorder, with a popup that says how, or gives it back.
    void stwControlsToggledByUser();
    // The driver has the brakes stop a run (1), or no longer (anything else).
    void brakePedalControlToggledByUser(int state);

protected:
    // Qt's word on the widgets in this view: what was saved of one goes with it.
    void childEvent(QChildEvent* event) override;

private:
    void init();
    void connectEngine();
    // The only way into a state.
    void enter(ScreenState state);
    // Every outcome of an upload leads here, and only here.
    void returnToReady();
    void updateWhenRecorderIsGone();
    void packResults(bool saveOnly, Status status);
    void setSavedNum();
    void makeManual();
    void interrupt();
    void showVdtList(const VdtAnswer& answer, const QVariantMap& tests, const QString& whyNot);
    void logSlot(const char* name) const;

    NVHWorker mWorker;
    const AppMode mMode;
    ScreenState mState;
    ScreenState mInterruptedIn;  // the state at the last interruption
    bool mResultsDiscarded = false;
    std::unique_ptr<RunClock> mClock;
    std::unique_ptr<Screen> mScreen;  // this one and those below work on the ones before them
    std::unique_ptr<TestTables> mTables;
    std::unique_ptr<SideClips> mClips;
    std::unique_ptr<VdtDownload> mDownload;
    std::shared_ptr<NVHModeHandler> mModeHandler;  // while the steering wheel controls the screen
};
