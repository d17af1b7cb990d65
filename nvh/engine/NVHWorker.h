#pragma once

#include "nvh/Export.h"
#include "nvh/engine/Analysis.h"
#include "nvh/engine/CaptureThreads.h"
#include "nvh/engine/MicCheck.h"
#include "nvh/engine/Recorder.h"
#include "nvh/engine/RequestLine.h"
#include "nvh/engine/RunOutcome.h"
#include "nvh/engine/RunStore.h"
#include "nvh/engine/Settings.h"
#include "nvh/packaging/NvhPackageManager.h"
#include "nvh/process/WaitingCalls.h"

#include <HelixDash/services/Audio.h>
#include <HelixDash/services/SingleShotTimer.h>

#include <QObject>
#include <QStringList>

#include <cstdio>
#include <functional>

// What a finished capture is filed as.
enum RECORDING_TYPE {
    RecordingAmbient = 0,  // cAmbientFileName
    RecordingNotes = 1,    // cNotesFileName
    RecordingTest = 2,     // cRecordingFilename
};

// The engine of one test run: logs the vehicle signals, runs the audio recorder, and hands the result to packaging.
//
//     NVHWorker worker(AppModeNvh);
//     worker.setTestType("65 MPH");
//     worker.start();                     // startUpdating() when the recorder has been started
//     worker.stop();                      // recordingStopped(), endRecording(); the recorder exits on its own time
//     worker.setSaveOnlyState(true);
//     worker.resultsDone();               // packs the run's files, finished(true)
//
// Lives on the main thread, where all slots and signals run; an event loop must turn there. Nothing blocks but stop(),
// threadStatus() and the destructor. Failures are log lines, signals and feedback texts, and values beside them.
//
// A run or a clip keeps the files that it writes to itself, among all recorders on the machine, until they are packed
// or discarded or the engine goes. What is asked for while the recorder of the run before still ends waits for it in
// turn.
class NVH_EXPORT NVHWorker : public QObject {
    Q_OBJECT
public:
    // Starts and opens nothing. The mode changes nothing here.
    explicit NVHWorker(AppMode mode);
    // Ends children and threads in the middle of anything; nothing is packed and nothing emitted. Blocks for at most
    // 500 ms for the recorder and 500 ms for each of the four threads, longer only for one that cannot be terminated.
    ~NVHWorker() override;

    // Packs and uploads for this engine; lives as long.
    NvhPackageManager& packageManager() { return mPackageManager; }
    // As given to the constructor.
    AppMode appMode() const { return mAppMode; }

    // Calls back when no recorder, microphone check or analysis is at work: at once, or as soon as the last of them has
    // ended and its outcome has been dealt with. Not for a context that is destroyed before.
    void whenSettled(QObject* context, std::function<void()> callback);

    // How the last recorder ended and what it left, and how the last analysis ended.
    const CaptureOutcome& captureOutcome() const { return mCaptureOutcome; }
    const AnalysisOutcome& analysisOutcome() const { return mAnalysis.outcome(); }
    // The package of the last resultsDone(), also while that waits for the recorder; 0 before the first one. The
    // package manager's signals are about it while its subject() is this number.
    int packageInHand() const { return mPackageInHand; }
    // Something that the driver must not miss about the package of the next resultsDone(): logged at "ERROR", and shown
    // below every text about that package. Lines without a last line end.
    void addNote(const QString& note) { mNotes.append(note); }
    // Takes hold of the files of runs and clips, as every start does: for whoever is going to write one of them. Empty
    // if they could be had, else who has one of them.
    QString keepFiles() { return mStore.keep(); }
    // What was found and set aside at the last start, as the driver was told; empty if nothing was.
    const QString& setAsideNote() const { return mSetAsideNote; }

    // True for the test type "Brake Squeal", exactly so.
    Q_INVOKABLE bool isBrakeSquealTest() const;
    // The analysis program's word for the frequency resolution: "2048" to "16384", "8192" for one that is unknown.
    Q_INVOKABLE QString parseFftSize() const;
    // Its word for the microphone channel: "sum", "left" or "right", "left" for one that is unknown.
    Q_INVOKABLE QString parseMicChannel() const;
    // The vehicle identification number.
    Q_INVOKABLE QString readVin() const;

    // For clients; see fixWavHeader() in WavHeader.h. Blocks for the few bytes that it writes.
    bool fixWavHeader(QString& path);
    // Writes a block at an absolute offset in bytes. False, with a log line, on failure.
    bool writeBytesToFile(FILE* file, int offset, void* data, size_t size);
    // For clients; see spectrumPasses() in SpectrumTable.h. Frequencies in Hz.
    bool resultsCheck(const QByteArray& table, int lowFrequency, int highFrequency, double threshold);

    // Writes the file of the test conditions: temperatures, tyre pressures, position. Called by start(). A file that
    // cannot be made or written is a log line.
    void createDataValuesFile();
    // Names the package, with the verdict in the name, and has the run's existing files packed. Called by
    // resultsDone().
    void renameFiles(bool pass);

    // Makes the loggers of the vehicle signals for one run, and starts their threads. Called at the start of a run.
    void initValueLoggerThreads();
    void startValueLoggerThreads();
    // Reserved; does nothing.
    void initRpmCaptureThread();
    // For who attaches a CAN client to the reserved thread: sets the client's run condition and starts the thread.
    void startRpmCaptureThread();

    // Reports a failed system call: the message with the current error number and its text, at "ERROR".
    void logWithErrorNum(QString message);

signals:
    // The results are written and the package is being made; the recorder itself judges nothing, so pass is always
    // true.
    void finished(bool pass);
    // Never emitted; kept for a CAN client and for programs that connect by name.
    void stopCapture();
    // Never emitted; kept for programs that connect by name.
    void quitLogger();
    // Never emitted; kept for programs that connect by name.
    void waitingForCanData();
    // The recorder has been asked to start, or would have been if it could be; the recording's clock begins.
    void startUpdating();
    // Never emitted here; whoever attaches a CAN client relays its ackFailed() to it.
    void ackFailed_Relay();
    // In stop(), after the recorder was told to end; the loggers end with it.
    void endRecording();
    // First of all in stop().
    void recordingStopped();
    // A text for the driver: empty at every start, then what the recorder and the microphone check have to say.
    void updateFeedbackLabel(QString response);

public slots:
    // Starts the recorder alone, for a clip; a run has it started. One that still ends is waited for.
    void startAudioRecording();
    // Asks the recorder to end, once; 3 s later it is killed. Cancels a clip that still waits. Does not wait.
    void stopAudioRecording();
    // Begins a run: startUpdating() follows, at once or when the run before is packed and its recorder gone. Refused
    // with a log line while one is running.
    void start();
    // Ends a run; refused with a log line while none is running. The recorder exits on its own time. Blocks for at most
    // 500 ms for each of the four capture threads; a thread that takes longer is terminated, and the run's files are
    // deleted, since what a terminated logger wrote is not trusted.
    void stop();
    // Packages registered since the last packaging.
    int getUploadSuccessNumber();
    // Deletes the run's files, and the capture of a recorder that still ends when it has.
    void deleteRecordedFiles();
    // For clients: runs the analysis program on the recording; resultsDone() or resultsError() follows. It is killed
    // when its time is over.
    void startProcessingResults();
    // Moves the capture to the place of that kind of recording; see Recorder::fileAs() for one that is still being
    // written. Across file systems it is copied, which blocks that long.
    void processRecording(RECORDING_TYPE type);
    // The test type's display name, for the runs that start from now on.
    void setTestType(QString testType);
    // Position 0 to 7 of the duration's switch.
    void setSliderDurationPosition(int pos);
    // True files the package as one of a run with torque reversal.
    void setClunkButtonState(bool state);
    // Seconds for the duration's position; 0 for a manual recording, -1 for a position that is none.
    int getDuration();
    // True keeps packages, false uploads them; holds for what is asked for from now on.
    void setSaveOnlyState(bool state);
    bool getSaveOnlyState();
    // Saved packages that the last search found.
    int getSavedFilesCount();
    // True from start() to the end of the recording, or to startProcessingResults().
    bool isRunning();
    // 1/min, truncated toward zero; 0 where the vehicle does not say.
    int getMotorRPM();
    // The vehicle's trim without '+'; "Invalid" where the vehicle does not say.
    QString getTrim();
    // The file tag of the test type, "_CLUNK" behind it with torque reversal. A type that is not known gets a row with
    // an empty tag.
    QString getTag();
    // Starts loggers and recorder; called by start().
    void actuallyStartRecording();
    // Waits for the reserved thread without a limit, and logs whether it runs.
    void threadStatus();
    // 0 sum, 1 left, 2 right.
    void setMicChannel(int channel);
    int getMicChannel();
    // 0 to 3 for 2048 to 16384 lines.
    void setFreqResolution(int selection);
    int getFreqResolution();
    // Packs the run: for the screen's Save and Upload, and when the analysis program has ended. Waits for a recorder or
    // a microphone check that still ends; finished() follows. Wish, notes and test type are those of the call.
    void resultsDone();
    // The analysis program could not be started or crashed.
    void resultsError();
    // The microphone check has ended: its report goes to the driver, the log and the package.
    void micCheckDone();
    // It could not be started or crashed.
    void micCheckError();
    // The recorder could not be started or crashed: ends the run and tells the driver.
    void arecord_error();
    // The recorder has ended: what it left is filed, and what waited for it goes on.
    void arecord_done();
    // The vehicle's speed has changed during a brake squeal test: at standstill the run is stopped 2 s later.
    void checkVehicleSpeed();

private:
    // Idle --start--> Waiting --> Recording --stop, failure, analysis--> Idle
    enum class Run { Idle, Waiting, Recording };

    // What the user has chosen.
    struct Selections {
        RunFiles::TestNote test;  // type and torque reversal
        int durationPosition = 0;
        int micChannel = 0;
        int freqResolution = 0;
    };

    // Whether a request's time has come, and what it asks for.
    bool isDue(const Request& request) const;
    void carryOut(Request request);
    // Carries out what waits as far as its time has come; called whenever something has ended.
    void resume();
    bool isSettled() const;

    void beginRun(const RunFiles::TestNote& test);
    void beginCapture();
    // Takes hold of the files of a run or clip, and sets aside what lies at the capture's place. The reason if they
    // cannot be had.
    QString claimFiles();
    void refuseCapture(const QString& reason);
    void concludeCapture();
    void failRecording(const QString& words);
    void reportRecorder(const QString& words);
    QString fileCapture(RECORDING_TYPE type, const QString& target);

    Request resultsRequest();
    void packResults(Request request);
    QStringList packFiles(Request request, bool pass, const QString& heldElsewhere);
    void removeRecordedFiles();
    void releaseFiles();

    CaptureThreads mThreads{*this};
    NvhPackageManager mPackageManager;
    Run mRun = Run::Idle;
    bool mSecondFlag = false;
    Audio* mAudio;
    Recorder mRecorder{this};
    Analysis mAnalysis{this};
    MicCheck mMicCheck{this};
    Selections mSelected;
    QStringList mFilesToPackage;
    AppMode mAppMode;
    SingleShotTimer mStopTimer;

    RequestLine mRequests;
    RunStore mStore;
    CaptureOutcome mCaptureOutcome;
    int mPackageInHand = 0;
    QStringList mNotes;
    QString mSetAsideNote;
    WaitingCalls mWhenSettled;
};
