// The audio recorder: begun, ended, and its capture filed.

#include "nvh/engine/NVHWorker.h"
#include "nvh/engine/WavHeader.h"
#include "nvh/files/OwnFile.h"
#include "nvh/process/ChildProcess.h"

#include <HelixDash/services/Logger.h>

#include <QFile>
#include <QTimer>

void NVHWorker::startAudioRecording() {
    Logger(this, "INFO") << "startAudioRecording";
    if (mRecorder.isActive())
        mRequests.add({Request::Kind::Clip});
    else
        beginCapture();
}

void NVHWorker::beginCapture() {
    if (const QString refusal = claimFiles(); !refusal.isEmpty()) {
        refuseCapture(refusal);
        return;
    }
    const QString capture = cCapturingFileName.value();
    Logger(this, "INFO") << "Starting process:" << Recorder::program() << bracketed(Recorder::arguments(capture));
    mRecorder.start(mRun == Run::Recording ? Recorder::Purpose::Run : Recorder::Purpose::Clip, capture);
    emit startUpdating();
}

QString NVHWorker::claimFiles() {
    QString reason = keepFiles();
    if (!reason.isEmpty())
        return reason;
    for (const QString& file : {cCapturingFileName.value(), cRecordingFilename.value()}) {
        reason = whyNotOwn(file);
        if (!reason.isEmpty())
            return reason;
    }
    if (const auto setAside = RunFiles::setAsideUnfiledCapture(this)) {
        if (!setAside->error.isEmpty())
            return setAside->error;
        Logger(this, "ERROR") << "A recording that was never filed is kept in" << setAside->file;
        mSetAsideNote = QStringLiteral("A recording that was never filed is kept in\n%1").arg(setAside->file);
        emit updateFeedbackLabel(mSetAsideNote);
    }
    return QString();
}

// As a recorder that is not there: the recording begins and fails.
void NVHWorker::refuseCapture(const QString& reason) {
    mCaptureOutcome = {CaptureOutcome::How::Refused, QString(), reason, reason};
    if (mRun == Run::Recording)
        mStore.conclude(mCaptureOutcome);
    emit startUpdating();
    QTimer::singleShot(0, this, [this, reason] {
        failRecording(reason);
        resume();
    });
}

void NVHWorker::stopAudioRecording() {
    mRequests.cancel(Request::Kind::Clip);
    mRecorder.stop();
}

void NVHWorker::arecord_done() {
    if (!mRecorder.hasEnded())
        return;
    Logger(this, "INFO") << "arecord:" << mRecorder.words();
    concludeCapture();
}

void NVHWorker::concludeCapture() {
    using How = CaptureOutcome::How;
    if (!mRecorder.hasEnded())
        return;
    const bool servesRun = mRecorder.purpose() == Recorder::Purpose::Run && mStore.isOpen();
    const Recorder::Conclusion conclusion = mRecorder.conclude();
    mCaptureOutcome = conclusion.outcome;
    const How how = mCaptureOutcome.how;
    if (conclusion.isTestRecording)
        processRecording(RecordingTest);
    else if (!conclusion.failure.isEmpty())
        Logger(this, "ERROR") << conclusion.failure;
    if (servesRun)
        mStore.conclude(mCaptureOutcome);

    // Without a device or with a full disk the recorder leaves by itself; nobody must go on driving for nothing.
    if (how == How::LeftEarly && mRun == Run::Recording)
        failRecording(mCaptureOutcome.words);
    else if (how == How::LeftEarly)
        reportRecorder(mCaptureOutcome.words);
    else if (how == How::Killed)
        reportRecorder(QStringLiteral("The recorder did not end and was killed.\n%1")
                           .arg(mCaptureOutcome.file.isEmpty() ? mCaptureOutcome.noFile
                                                               : QStringLiteral("What it recorded is kept.")));

    // The report must not turn up in a run that has begun meanwhile.
    const bool reportWanted = mRun == Run::Idle || mRequests.has(Request::Kind::Results);
    const RunFiles::TestNote& test = servesRun ? mStore.test() : mSelected.test;
    const bool filed = conclusion.isTestRecording && mCaptureOutcome.noFile.isEmpty();
    if (test.testType == QLatin1String("Mic Test") && filed && reportWanted) {
        Logger(this, "INFO") << "Starting process:" << MicCheck::program() << bracketed(MicCheck::arguments());
        mMicCheck.start();
    }
    if (mCaptureOutcome.file.isEmpty())
        releaseFiles();
    resume();
}

void NVHWorker::arecord_error() {
    // One that was killed because it was deaf is reported when it has ended.
    if (mRecorder.wasKilled())
        return;
    failRecording(mRecorder.words());
    // A recorder that could not start has no end to report. Its process may not go from within its own signal.
    if (mRecorder.hasEnded() && mRecorder.hasNotStarted())
        QTimer::singleShot(0, this, &NVHWorker::concludeCapture);
}

void NVHWorker::failRecording(const QString& words) {
    // The recorder that a waiting run waits for is not its own, and does not end it.
    if (mRun != Run::Waiting)
        stop();
    reportRecorder(words);
}

void NVHWorker::reportRecorder(const QString& words) {
    Logger(this, "ERROR") << "Error with arecord" << words;
    emit updateFeedbackLabel(QStringLiteral("Error with arecord\n%1").arg(words));
}

void NVHWorker::processRecording(RECORDING_TYPE type) {
    Logger(this, "INFO") << "processRecording";
    QString target;
    switch (type) {
        case RecordingAmbient:
            target = cAmbientFileName.value();
            break;
        case RecordingNotes:
            target = cNotesFileName.value();
            break;
        case RecordingTest:
            target = cRecordingFilename.value();
            break;
        default:
            Logger(this, "ERROR") << "processRecording() invalid type";
            return;
    }
    Logger(this, "INFO") << "rename and header fix for " << target;
    const QString failure = fileCapture(type, target);
    if (!failure.isEmpty())
        Logger(this, "ERROR") << failure;
}

// Why the capture is not in its place; empty if it is, or will be when its recorder has ended.
QString NVHWorker::fileCapture(RECORDING_TYPE type, const QString& target) {
    const QString capture = cCapturingFileName.value();
    // Without a capture there is nothing to put in the target's place.
    const QString noCapture = QStringLiteral("No capture file %1 - keeping %2").arg(capture, target);
    if (mRecorder.isActive())
        return mRecorder.fileAs(target) ? QString() : noCapture;
    if (!isOwnPlainFile(capture))
        return noCapture;
    // It may be what another recorder is writing.
    QString failure = keepFiles();
    if (failure.isEmpty())
        failure = moveOwnFile(capture, target);
    if (type != RecordingTest)
        return failure;
    mCaptureOutcome.file = failure.isEmpty() ? target : QString();
    mCaptureOutcome.noFile = failure;
    if (failure.isEmpty())
        RunFiles::writeTestNote(mStore.isOpen() ? mStore.test() : mSelected.test);
    return failure;
}

bool NVHWorker::writeBytesToFile(FILE* file, int offset, void* data, size_t size) {
    return ::writeBytesToFile(file, offset, data, size, this);
}

bool NVHWorker::fixWavHeader(QString& path) {
    return ::fixWavHeader(path, this);
}
