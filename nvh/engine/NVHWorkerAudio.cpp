// The audio recorder.

#include "nvh/engine/NVHWorker.h"
#include "nvh/engine/WavHeader.h"
#include "nvh/packaging/ChildProcess.h"

#include <HelixDash/services/Logger.h>

#include <QFile>
#include <QFileInfo>
#include <QTimer>

#include <utility>

namespace {

// Invalid if there is no capture file.
QDateTime captureWrittenAt() {
    return QFileInfo(cCapturingFileName.value()).lastModified();
}

}  // namespace

void NVHWorker::startAudioRecording() {
    Logger(this, "INFO") << "startAudioRecording";
    if (recorderIsEnding()) {
        mRecorderWanted = true;
        return;
    }
    mCaptureDiscarded = false;
    if (!mRecorder)
        mRecorder = makeProcess(&NVHWorker::arecord_done, &NVHWorker::arecord_error);
    mRecorderTerminated = false;
    mRecorderServesRun = mRunning;
    mCaptureBefore = captureWrittenAt();
    startProcess(mRecorder, QStringLiteral("/usr/bin/arecord"),
                 {"-Dapp_in_diagnostic", "-c8", "-r48000", "-fS16_LE", "-N", cCapturingFileName.value()});
    emit startUpdating();
}

bool NVHWorker::recorderIsEnding() const {
    return mRecorderTerminated && isActive(mRecorder);
}

void NVHWorker::stopAudioRecording() {
    mRecorderWanted = false;
    // Once only: a second request can end the recorder before it has completed its file.
    if (!isActive(mRecorder) || mRecorderTerminated)
        return;
    mRecorderTerminated = true;
    mRecorder->terminate();
}

void NVHWorker::arecord_done() {
    if (!mRecorder)
        return;
    const QString output = QString::fromLocal8Bit(mRecorder->readAll());
    Logger(this, "INFO") << "arecord:" << output;
    const bool endedByItself = !mRecorderTerminated;
    const bool endedRun = endedByItself && mRunning;
    // The report must not turn up in a run that has begun meanwhile.
    const bool reportWanted = !mCaptureDiscarded && (!mRunning || endedRun || mResultsWanted);
    mRecorder = nullptr;
    mRecorderTerminated = false;
    const bool filed = fileTestRecording(endedByItself);
    // Without a device or with a full disk the recorder leaves by itself; nobody must go on driving for nothing.
    if (endedRun)
        failRecording(output);
    if (mTestType == QLatin1String("Mic Test") && filed && reportWanted)
        startMicCheck();
    mCaptureDiscarded = false;
    resumeWhatWaited();
}

bool NVHWorker::fileTestRecording(bool endedByItself) {
    const QString capture = cCapturingFileName.value();
    const QDateTime writtenAt = captureWrittenAt();
    if (mCaptureDiscarded) {
        QFile::remove(capture);
        return false;
    }
    if (!mLateTarget.isEmpty()) {
        fileCapture(std::exchange(mLateTarget, QString()));
        return false;
    }
    // A recorder that leaves at once may leave another one's file behind.
    if (endedByItself && writtenAt.isValid() && writtenAt == mCaptureBefore)
        return false;
    // A clip whose recorder left early is filed when its time is over; it must not cost the test recording.
    if (endedByItself && !mRecorderServesRun && QFile::exists(cRecordingFilename.value())) {
        Logger(this, "ERROR") << "The recorder left before its time, keeping" << cRecordingFilename.value();
        return false;
    }
    processRecording(RecordingTest);
    return writtenAt.isValid();
}

void NVHWorker::arecord_error() {
    failRecording(mRecorder ? QString::fromLocal8Bit(mRecorder->readAll()) : QString());
    // A recorder that could not start has no end to report either. Its process may not be started again from here.
    if (mRecorder && mRecorder->error() == QProcess::FailedToStart)
        QTimer::singleShot(0, this, &NVHWorker::resumeWhatWaited);
}

void NVHWorker::failRecording(const QString& output) {
    // A recorder that was told to end belongs to a run that is over, and does not end the next one.
    if (!mRunning || !mRecorderTerminated)
        stop();
    Logger(this, "ERROR") << "Error with arecord" << output;
    emit updateFeedbackLabel(QStringLiteral("Error with arecord\n%1").arg(output));
}

bool NVHWorker::writeBytesToFile(FILE* file, int offset, void* data, size_t size) {
    return ::writeBytesToFile(file, offset, data, size, this);
}

bool NVHWorker::fixWavHeader(QString& path) {
    return ::fixWavHeader(path, this);
}
