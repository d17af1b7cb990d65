// The order of a run: start, stop, and what waits while the run before still ends.

#include "nvh/engine/NVHWorker.h"

#include "nvh/capture/ErrorLog.h"
#include "nvh/capture/LoggerRunning.h"
#include "nvh/vehicle/VehicleSignals.h"

#include <HelixDash/services/Logger.h>

#include <utility>

NVHWorker::NVHWorker(AppMode mode) : mAudio(Audio::proxy()), mAppMode(mode) {
    connect(&mRecorder, &Recorder::ended, this, &NVHWorker::arecord_done);
    connect(&mRecorder, &Recorder::failed, this, &NVHWorker::arecord_error);
    connect(&mMicCheck, &MicCheck::ended, this, &NVHWorker::micCheckDone);
    connect(&mMicCheck, &MicCheck::failed, this, &NVHWorker::micCheckError);
    connect(&mAnalysis, &Analysis::ended, this, &NVHWorker::resultsDone);
    connect(&mAnalysis, &Analysis::failed, this, &NVHWorker::resultsError);
}

NVHWorker::~NVHWorker() {
    // From here on nobody hears of this run.
    blockSignals(true);
    dvDisconnect(VehicleSignals::kSpeed.find(), this);
    loggerRunning = false;
}

void NVHWorker::start() {
    if (cLogVerbose.value())
        Logger(this, "INFO") << "start";
    emit updateFeedbackLabel(QString());
    if (mRun != Run::Idle) {
        Logger(this, "ERROR") << "Already running";
        return;
    }
    mRun = Run::Waiting;
    mSetAsideNote.clear();
    // A report on the run before must not turn up in this one; if a package waits for it, so does this run.
    if (!mRequests.has(Request::Kind::Results))
        mMicCheck.release();
    // One that an analysis has left at work.
    mRecorder.stop();
    mRequests.add({Request::Kind::Run, mSelected.test});
    resume();
}

void NVHWorker::beginRun(const RunFiles::TestNote& test) {
    mRun = Run::Recording;
    mStore.open(test);
    if (const QString refusal = claimFiles(); !refusal.isEmpty()) {
        refuseCapture(refusal);
        return;
    }
    initValueLoggerThreads();
    createDataValuesFile();
    actuallyStartRecording();
    if (isBrakeSquealTest())
        dvConnect(VehicleSignals::kSpeed.find(), this, &NVHWorker::checkVehicleSpeed);
}

void NVHWorker::actuallyStartRecording() {
    Logger(this, "INFO") << "actuallyStartRecording";
    startValueLoggerThreads();
    startAudioRecording();
}

void NVHWorker::checkVehicleSpeed() {
    RealDataValue* speed = VehicleSignals::kSpeed.find();
    if (!speed)
        return;
    {
        const DataValue::StateLocker locker(speed);
        if (speed->value() > 0.0)
            return;
    }
    dvDisconnect(speed, this);
    Logger(this, "INFO") << "Stopping Recording - VEHICLE STOPPED";
    mStopTimer.start(2000, this, &NVHWorker::stop);
}

void NVHWorker::stop() {
    if (cLogVerbose.value())
        Logger(this, "INFO") << "stop";
    if (mRun == Run::Idle) {
        Logger(this, "ERROR") << "Not currently running";
        return;
    }
    // A stop that was scheduled for this run must not end the next one.
    mStopTimer.stop();
    dvDisconnect(VehicleSignals::kSpeed.find(), this);

    emit recordingStopped();
    stopAudioRecording();
    mRequests.cancel(Request::Kind::Run);
    mRun = Run::Idle;
    loggerRunning = false;
    emit endRecording();
    if (mThreads.join()) {
        if (cLogVerbose.value())
            Logger(this, "INFO") << "NVHWorker::stop All threads exited properly";
    } else {
        Logger(this, "INFO") << "Discarding Files";
        removeRecordedFiles();
    }
}

bool NVHWorker::isRunning() {
    return mRun != Run::Idle;
}

bool NVHWorker::isDue(const Request& request) const {
    switch (request.kind) {
        case Request::Kind::Results:
            // What is still being written belongs into the package.
            return !mRecorder.isEnding() && !mMicCheck.isActive();
        case Request::Kind::Run:
            // Its logs would overwrite the files of the run before while they are packed.
            return !mRecorder.isActive() && !mPackageManager.isPackaging();
        case Request::Kind::Clip:
            return !mRecorder.isActive();
    }
    return false;
}

void NVHWorker::carryOut(Request request) {
    switch (request.kind) {
        case Request::Kind::Results:
            packResults(std::move(request));
            break;
        case Request::Kind::Run:
            beginRun(request.test);
            break;
        case Request::Kind::Clip:
            beginCapture();
            break;
    }
}

void NVHWorker::resume() {
    while (mRequests.first() && isDue(*mRequests.first()))
        carryOut(mRequests.takeFirst());
    if (mRequests.first() && mPackageManager.isPackaging())
        mPackageManager.whenNotPackaging(this, [this] { resume(); });
    if (isSettled())
        mWhenSettled.makeAll();
}

bool NVHWorker::isSettled() const {
    return !mRecorder.isActive() && !mMicCheck.isActive() && !mAnalysis.isActive();
}

void NVHWorker::whenSettled(QObject* context, std::function<void()> callback) {
    if (isSettled())
        callback();
    else
        mWhenSettled.add(context, std::move(callback));
}

void NVHWorker::logWithErrorNum(QString message) {
    logErrorNumber(this, message);
}

void NVHWorker::initValueLoggerThreads() {
    Logger(this, "INFO") << "initValueLoggerThreads";
    mThreads.makeLoggers();
}

void NVHWorker::startValueLoggerThreads() {
    mThreads.startLoggers();
}

void NVHWorker::initRpmCaptureThread() {}

void NVHWorker::startRpmCaptureThread() {
    mThreads.startCan();
}

void NVHWorker::threadStatus() {
    if (cLogVerbose.value())
        Logger(this, "INFO") << "Waiting for mNvhCanEthThread...";
    mThreads.waitForCan();
}

int NVHWorker::getUploadSuccessNumber() {
    return mPackageManager.getUploadSuccessCount();
}

void NVHWorker::setSaveOnlyState(bool state) {
    mPackageManager.setSaveOnlyState(state);
}

bool NVHWorker::getSaveOnlyState() {
    return mPackageManager.getSaveOnlyState();
}

int NVHWorker::getSavedFilesCount() {
    return mPackageManager.getSavedFilesCount();
}
