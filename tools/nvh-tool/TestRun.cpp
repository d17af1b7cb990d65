#include "tools/nvh-tool/TestRun.h"

#include "tools/nvh-tool/Command.h"
#include "tools/nvh-tool/PackageReason.h"

#include <QCoreApplication>

namespace {

QString troubleOf(const CaptureOutcome& capture) {
    using How = CaptureOutcome::How;
    const QString words = capture.words.simplified();
    if (capture.how == How::NotStarted)
        return QStringLiteral("/usr/bin/arecord could not be started");
    if (capture.how == How::Killed)
        return QStringLiteral("/usr/bin/arecord did not end and was killed");
    if (!words.isEmpty())
        return words;
    return capture.how == How::Crashed ? QStringLiteral("/usr/bin/arecord crashed")
                                       : QStringLiteral("/usr/bin/arecord ended before its time");
}

}  // namespace

TestRun::TestRun(const RecordOptions& options) : mOptions(options) {
    connect(&mWorker, &NVHWorker::updateFeedbackLabel, this, &TestRun::heedEngine);
    connect(&mWorker, &NVHWorker::startUpdating, this, &TestRun::recordingStarted);
    connect(&mWorker, &NVHWorker::endRecording, this, &TestRun::recordingEnded);
    connect(&mStopSignals, &StopSignals::caught, this, &TestRun::interrupt);
    connect(&mEndTimer, &QTimer::timeout, &mWorker, &NVHWorker::stop);
    connect(&mProgressTimer, &QTimer::timeout, this, &TestRun::showProgress);
    mWorker.packageManager().onOutcome(this, [this](const PackageOutcome& outcome) { packageSettled(outcome); });
    mEndTimer.setSingleShot(true);
    // To the millisecond: the recording's length is what was asked for.
    mEndTimer.setTimerType(Qt::PreciseTimer);
    mWorker.setTestType(options.testType);
    mWorker.setClunkButtonState(options.clunk);
    mWorker.setSaveOnlyState(options.fate != RecordOptions::Fate::Upload);
}

void TestRun::begin() {
    mWorker.start();
    // An engine that has refused has no recording to end.
    if (!mWorker.isRunning())
        recordingEnded();
}

void TestRun::recordingStarted() {
    mClock.start();
    mEndTimer.start(mOptions.seconds * 1000);
    mProgressTimer.start(1000);
    say(QStringLiteral("recording \"%1\"").arg(mOptions.testType));
    if (!mWorker.setAsideNote().isEmpty())
        say(mWorker.setAsideNote());
}

void TestRun::showProgress() {
    say(QStringLiteral("%1 s, %2 1/min").arg(mClock.elapsed() / 1000).arg(mWorker.getMotorRPM()));
}

void TestRun::recordingEnded() {
    mEndTimer.stop();
    mProgressTimer.stop();
    if (mClock.isValid())
        say(QStringLiteral("recorded %1 s").arg(double(mClock.elapsed()) / 1000.0, 0, 'f', 1));
    // After the engine has said why, if it stopped by itself.
    QTimer::singleShot(0, this, [this] {
        mRecorded = true;
        mWorker.whenSettled(this, [this] { decide(); });
    });
}

// What it says of the recorder is in the outcome; after that the microphone check reports.
void TestRun::heedEngine(const QString& text) {
    if (mRecorded && mWorker.captureOutcome().how != CaptureOutcome::How::None)
        say(text);
}

void TestRun::decide() {
    if (mDecided)
        return;
    mDecided = true;
    sayWhatIsWrong();
    const CaptureOutcome& capture = mWorker.captureOutcome();
    if (capture.hasFailed() && capture.file.isEmpty()) {
        end(false);
    } else if (mOptions.fate == RecordOptions::Fate::Discard) {
        mWorker.deleteRecordedFiles();
        say(QStringLiteral("discarded"));
        end(true);
    } else {
        say(mOptions.fate == RecordOptions::Fate::Save ? QStringLiteral("packing")
                                                       : QStringLiteral("packing and uploading"));
        mWorker.resultsDone();
    }
}

void TestRun::sayWhatIsWrong() {
    const CaptureOutcome& capture = mWorker.captureOutcome();
    if (capture.hasFailed())
        say(QStringLiteral("the recorder failed: %1").arg(troubleOf(capture)));
    // A recorder that has failed before it left anything has been named already.
    const bool missing = capture.file.isEmpty() || !capture.noFile.isEmpty();
    if (missing && !(capture.hasFailed() && capture.file.isEmpty()))
        say(QStringLiteral("No recording: %1").arg(capture.noFile));
    mFailed = capture.hasFailed() || missing;
}

void TestRun::packageSettled(const PackageOutcome& outcome) {
    if (!outcome.isGood())
        say(reasonOf(outcome));
    else
        print(outcome.what == PackageOutcome::What::Kept ? outcome.package : outcome.feedback);
    end(outcome.isGood());
}

// The first interrupt ends the recording, a later one the wait for the server; the package stays.
void TestRun::interrupt() {
    mStopSignals.rearm();
    if (mWorker.isRunning())
        mWorker.stop();
    else if (mDecided)
        endInterrupted();
}

void TestRun::end(bool good) {
    QCoreApplication::exit(good && !mFailed ? ExitDone : ExitFailed);
}
