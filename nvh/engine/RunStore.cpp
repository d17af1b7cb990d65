#include "nvh/engine/RunStore.h"

#include "nvh/engine/Settings.h"
#include "nvh/files/OwnFile.h"
#include "nvh/packaging/PackageFiles.h"

void RunStore::choose() {
    if (mState == State::Foreign)
        mState = State::Chosen;
}

void RunStore::open(const RunFiles::TestNote& test) {
    mState = State::Open;
    mTest = test;
    mCapture = {};
}

void RunStore::conclude(const CaptureOutcome& capture) {
    if (isOpen())
        mCapture = capture;
}

std::optional<RunFiles::TestNote> RunStore::foreignTest() const {
    const bool isForeign = mState == State::Foreign && isPackable(cRecordingFilename.value());
    return isForeign ? RunFiles::readTestNote() : std::nullopt;
}

QString RunStore::whyNoRecording() const {
    if (isOpen() && !mCapture.noFile.isEmpty())
        return mCapture.noFile;
    if (isPackable(cRecordingFilename.value()))
        return QString();
    const QString foreign = whyNotOwn(cRecordingFilename.value());
    return foreign.isEmpty() ? QStringLiteral("nothing was recorded") : foreign;
}

QString RunStore::keep() {
    QString reason;
    mLock.acquire(RunFiles::keptFiles(), &reason);
    return reason;
}

void RunStore::release() {
    RunFiles::dropTestNoteWithoutRecording();
    if (!isOpen())
        mLock.release();
}
