// The session: start, stop, and what a run leaves behind.

#include "nvh/engine/NVHWorker.h"

#include "nvh/capture/ErrorLog.h"
#include "nvh/capture/LoggerRunning.h"
#include "nvh/capture/NvhValueLogger.h"
#include "nvh/packaging/ChildProcess.h"

#include <HelixDash/services/Logger.h>
#include <HelixDash/values/DataValueManager.h>

#include <utility>

namespace {

RealDataValue* vehicleSpeed() {
    return DataValueManager::instance().find<RealDataValue>("VAPI_signedVehicleSpeed");
}

}  // namespace

NVHWorker::NVHWorker(AppMode mode) : mAudio(Audio::proxy()), mAppMode(mode) {}

NVHWorker::~NVHWorker() {
    // From here on nobody hears of this run.
    blockSignals(true);
    dvDisconnect(vehicleSpeed(), this);
    endChildProcess(mRecorder, kThreadWaitMs);
    endChildProcess(mMicCheck);
    endChildProcess(mAnalysis);
    loggerRunning = false;
    for (const CaptureThread& capture : captureThreads())
        capture.thread->quit();
    const bool allEnded = joinCaptureThreads();
    // Terminating is the last resort and may itself take its time; a thread object must not go while its thread runs.
    for (const CaptureThread& capture : captureThreads())
        capture.thread->wait();
    for (const auto& logger : mLoggers) {
        if (logger && !allEnded)
            logger->discardFile();
        delete logger;
    }
}

void NVHWorker::start() {
    if (cLogVerbose.value())
        Logger(this, "INFO") << "start";
    emit updateFeedbackLabel(QString());
    if (mRunning) {
        Logger(this, "ERROR") << "Already running";
        return;
    }
    mRunning = true;
    mRunWanted = true;
    // A report on the run before must not turn up in this one; if a package waits for it, so does this run.
    if (!mResultsWanted)
        releaseMicCheck();
    beginRun();
}

void NVHWorker::beginRun() {
    // This run's logs would overwrite the files of the last one before they are packed.
    if (mResultsWanted)
        return;
    mPackageManager.whenNotPackaging(this, [this] {
        if (!std::exchange(mRunWanted, false))
            return;
        initValueLoggerThreads();
        createDataValuesFile();
        actuallyStartRecording();
        if (isBrakeSquealTest())
            dvConnect(vehicleSpeed(), this, &NVHWorker::checkVehicleSpeed);
    });
}

void NVHWorker::actuallyStartRecording() {
    Logger(this, "INFO") << "actuallyStartRecording";
    startValueLoggerThreads();
    startAudioRecording();
}

void NVHWorker::checkVehicleSpeed() {
    RealDataValue* speed = vehicleSpeed();
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
    if (!mRunning) {
        Logger(this, "ERROR") << "Not currently running";
        return;
    }
    // A stop that was scheduled for this run must not end the next one.
    mStopTimer.stop();
    dvDisconnect(vehicleSpeed(), this);

    emit recordingStopped();
    stopAudioRecording();
    mRunning = false;
    mRunWanted = false;
    loggerRunning = false;
    emit endRecording();
    if (joinCaptureThreads()) {
        if (cLogVerbose.value())
            Logger(this, "INFO") << "NVHWorker::stop All threads exited properly";
    } else {
        Logger(this, "INFO") << "Discarding Files";
        removeRecordedFiles();
    }
}

bool NVHWorker::isRunning() {
    return mRunning;
}

bool NVHWorker::isSettled() const {
    return !isActive(mRecorder) && !isActive(mMicCheck) && !isActive(mAnalysis);
}

void NVHWorker::whenSettled(QObject* context, std::function<void()> callback) {
    if (isSettled()) {
        callback();
        return;
    }
    mWhenSettled.add(context, std::move(callback));
}

void NVHWorker::resumeWhatWaited() {
    if (mResultsWanted && !recorderIsEnding() && !isActive(mMicCheck)) {
        mResultsWanted = false;
        resultsDone();
    }
    if (mRunWanted)
        beginRun();
    if (mRecorderWanted && !recorderIsEnding()) {
        mRecorderWanted = false;
        startAudioRecording();
    }
    if (!isSettled())
        return;
    mWhenSettled.makeAll();
}

QProcess* NVHWorker::makeProcess(void (NVHWorker::*done)(), void (NVHWorker::*error)()) {
    auto* process = new QProcess(this);
    // The programs say what is wrong on standard error; it belongs to the output that is read.
    process->setProcessChannelMode(QProcess::MergedChannels);
    connect(process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this, done);
    connect(process, &QProcess::errorOccurred, this, error);
    return process;
}

void NVHWorker::startProcess(QProcess* process, const QString& program, const QStringList& arguments) {
    Logger(this, "INFO") << "Starting process:" << program << bracketed(arguments);
    process->start(program, arguments, QIODevice::ReadWrite);
}

void NVHWorker::logWithErrorNum(QString message) {
    logErrorNumber(this, message);
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
