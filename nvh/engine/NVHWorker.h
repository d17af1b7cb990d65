#pragma once

#include "nvh/Export.h"
#include "nvh/engine/Settings.h"
#include "nvh/packaging/NvhPackageManager.h"
#include "nvh/process/WaitingCalls.h"

#include <HelixDash/services/Audio.h>
#include <HelixDash/services/SingleShotTimer.h>

#include <QDateTime>
#include <QObject>
#include <QPointer>
#include <QProcess>
#include <QStringList>
#include <QThread>

#include <array>
#include <cstdio>
#include <functional>

class NvhValueLogger;
class RealDataValue;

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
// Lives on the UI thread, where all slots and signals run; an event loop must turn there. The only call that blocks is
// stop(), for at most 500 ms for each capture thread. Failures are log lines, signals and feedback texts.
//
// Destroying the engine in the middle of anything ends its children and threads within the same bounds; nothing is
// packed and nothing emitted.
class NVH_EXPORT NVHWorker : public QObject {
    Q_OBJECT
public:
    explicit NVHWorker(AppMode mode);
    ~NVHWorker() override;

    NvhPackageManager& packageManager() { return mPackageManager; }
    AppMode appMode() const { return mAppMode; }

    // Calls back when no recorder, microphone check or analysis is at work: at once, or as soon as the last of them has
    // ended and its outcome has been dealt with. Not for a context that is destroyed before.
    void whenSettled(QObject* context, std::function<void()> callback);

    // True for the test type "Brake Squeal", exactly so.
    Q_INVOKABLE bool isBrakeSquealTest() const;
    // The analysis program's words for the selections: "2048" to "16384", and "sum", "left" or "right".
    Q_INVOKABLE QString parseFftSize() const;
    Q_INVOKABLE QString parseMicChannel() const;
    Q_INVOKABLE QString readVin() const;

    // Repairs the RIFF size (offset 4) and the data size (offset 40) of a WAV file with the canonical 44-byte header
    // from the file's length. False, with a log line, if the file cannot be opened, measured, written or closed.
    bool fixWavHeader(QString& path);
    // Writes a block at an absolute offset in bytes. False, with a log line, on failure.
    bool writeBytesToFile(FILE* file, int offset, void* data, size_t size);

    // Judges a spectrum table, lines of frequency (Hz), order, level and RPM between blanks: false if any level in the
    // band (both ends included) exceeds the threshold. Fields that are missing or unreadable count as 0.
    bool resultsCheck(const QByteArray& table, int lowFrequency, int highFrequency, double threshold);

    // Writes the file of the test conditions: temperatures, tyre pressures, position.
    void createDataValuesFile();
    // Names the package and has the run's existing files packed.
    void renameFiles(bool pass);

    // The value loggers' threads, and the one that is reserved for a CAN client.
    void initValueLoggerThreads();
    void startValueLoggerThreads();
    void initRpmCaptureThread();
    void startRpmCaptureThread();

    void logWithErrorNum(QString message);

signals:
    void finished(bool pass);
    void stopCapture();
    void quitLogger();
    void waitingForCanData();
    void startUpdating();
    void ackFailed_Relay();
    void endRecording();
    void recordingStopped();
    void updateFeedbackLabel(QString response);

public slots:
    void startAudioRecording();
    void stopAudioRecording();
    void start();
    void stop();
    int getUploadSuccessNumber();
    void deleteRecordedFiles();
    void startProcessingResults();
    void processRecording(RECORDING_TYPE type);
    void setTestType(QString testType);
    void setSliderDurationPosition(int pos);
    void setClunkButtonState(bool state);
    int getDuration();
    void setSaveOnlyState(bool state);
    bool getSaveOnlyState();
    int getSavedFilesCount();
    bool isRunning();
    int getMotorRPM();
    QString getTrim();
    QString getTag();
    void actuallyStartRecording();
    void threadStatus();
    void setMicChannel(int channel);
    int getMicChannel();
    void setFreqResolution(int selection);
    int getFreqResolution();
    void resultsDone();
    void resultsError();
    void micCheckDone();
    void micCheckError();
    void arecord_error();
    void arecord_done();
    void checkVehicleSpeed();

private:
    static constexpr int kThreadWaitMs = 500;

    struct CaptureThread {
        QThread* thread;
        const char* name;  // as it stands in the log
    };
    std::array<CaptureThread, 4> captureThreads();
    QPointer<NvhValueLogger> initValueLogger(const char* valueName, QString fileName, QThread& thread);
    void logRunning(const char* label, const QThread& thread);
    // Waits for the threads, terminates what does not end. True if all ended by themselves.
    bool joinCaptureThreads();

    QProcess* makeProcess(void (NVHWorker::*done)(), void (NVHWorker::*error)());
    void startProcess(QProcess* process, const QString& program, const QStringList& arguments);
    bool recorderIsEnding() const;
    bool isSettled() const;
    void failRecording(const QString& output);
    // Puts what the recorder has left in place. True if it is a test recording now.
    bool fileTestRecording(bool endedByItself);
    void beginRun();
    void startMicCheck();
    void releaseMicCheck();
    // Carries out what was asked for while a child of the run before was still ending.
    void resumeWhatWaited();
    void removeRecordedFiles();
    // Moves the capture of a recorder that is gone into place.
    void fileCapture(const QString& target);

    // Declared in the order in which they are made; the threads go last.
    QThread mNvhCanEthThread;
    QThread mVehicleSpeedLoggerThread;
    QThread mMotorTorqueLoggerThread;
    QThread mMotorRPMLoggerThread;
    NvhPackageManager mPackageManager;
    bool mRunning = false;
    bool mSecondFlag = false;
    Audio* mAudio;
    QProcess* mRecorder = nullptr;  // these three: children of this object
    QProcess* mAnalysis = nullptr;
    QProcess* mMicCheck = nullptr;
    QString mTestType;
    int mSliderDurationPosition = 0;
    int mMicChannel = 0;
    int mFreqResolution = 0;
    bool mClunkButtonState = false;
    QStringList mFilesToPackage;
    AppMode mAppMode;
    SingleShotTimer mStopTimer;

    SingleShotTimer mAnalysisTimer;
    SingleShotTimer mMicCheckTimer;
    std::array<QPointer<NvhValueLogger>, 3> mLoggers;  // on their threads; delete themselves when they have finished
    bool mRecorderTerminated = false;                  // told to stop, not gone yet
    bool mRecorderServesRun = false;                   // not a side clip
    bool mRunWanted = false;                           // to be begun when the last one's results are packed
    bool mRecorderWanted = false;                      // to be started when the last one is gone
    bool mResultsWanted = false;                       // to be packed when recorder and microphone check are gone
    QString mLateTarget;                               // where the capture goes when its recorder is gone
    bool mCaptureDiscarded = false;                    // the capture of the recorder that is ending is not wanted
    QDateTime mCaptureBefore;  // when the capture file was last written before the recorder was started
    WaitingCalls mWhenSettled;
};
