#pragma once

#include "host/setup/StopSignals.h"
#include "nvh/engine/NVHWorker.h"

#include <QElapsedTimer>
#include <QTimer>

// What a test run is to be, and what becomes of it.
struct RecordOptions {
    enum class Fate { Save, Upload, Discard };

    // No recording is longer, with or without a screen.
    static constexpr int kLongestSeconds = 700;

    QString testType;
    int seconds = kLongestSeconds;
    bool clunk = false;
    Fate fate = Fate::Save;
};

// One test run by the engine alone, from start() to the package's fate. Ends the event loop with the exit status.
class TestRun : public QObject {
public:
    explicit TestRun(const RecordOptions& options);

    // Once, when the event loop turns.
    void begin();

private:
    void recordingStarted();
    void showProgress();
    void recordingEnded();
    void heedEngine(const QString& text);
    // The recorder, and the check of its sound, are done with.
    void decide();
    void sayWhatIsWrong();
    void packageSettled(const PackageOutcome& outcome);
    void interrupt();
    void end(bool good);

    RecordOptions mOptions;
    StopSignals mStopSignals;  // goes last: an interrupt must not cut short how the engine ends its children
    NVHWorker mWorker{AppModeNvh};
    QTimer mEndTimer;
    QTimer mProgressTimer;
    QElapsedTimer mClock;
    bool mRecorded = false;  // the engine has said all about the recorder
    bool mDecided = false;
    bool mFailed = false;  // whatever becomes of the package
};
