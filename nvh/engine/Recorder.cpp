#include "nvh/engine/Recorder.h"

#include "nvh/engine/WavHeader.h"
#include "nvh/files/OwnFile.h"
#include "nvh/process/ChildProcess.h"

#include <QFile>

#include <cstdio>

namespace {

constexpr int kGraceMs = 3000;
// For a recorder whose owner goes: the driver waits for that.
constexpr int kLastGraceMs = 500;

}  // namespace

Recorder::Recorder(QObject* parent) : QObject(parent), mGuard(parent) {}

Recorder::~Recorder() {
    if (mProcess)
        mProcess->endNow(kLastGraceMs);
}

QString Recorder::program() {
    return QStringLiteral("/usr/bin/arecord");
}

QStringList Recorder::arguments(const QString& captureFile) {
    return {"-Dapp_in_diagnostic", "-c8", "-r48000", "-fS16_LE", "-N", captureFile};
}

void Recorder::enter(State state) {
    mState = state;
    switch (state) {
        case State::Recording:
            mProcess->start(program(), arguments(mCapture), QIODevice::ReadWrite);
            break;
        case State::Ending:
            mProcess->end(kGraceMs);
            break;
        case State::Absent:
            mGuard.release();
            break;
    }
}

void Recorder::start(Purpose purpose, const QString& captureFile) {
    mPurpose = purpose;
    mFate = Fate::Open;
    mCapture = captureFile;
    // The one before may be telling of its end just now.
    if (mProcess)
        mProcess.release()->deleteLater();
    mProcess = std::make_unique<ChildProcess>(parent(), ChildProcess::WhenOrphaned::Terminate);
    // The program says what is wrong on standard error; it belongs to the output that is read.
    mProcess->setProcessChannelMode(QProcess::MergedChannels);
    connect(mProcess.get(), qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this, &Recorder::ended);
    connect(mProcess.get(), &QProcess::errorOccurred, this, &Recorder::failed);
    connect(mProcess.get(), &QProcess::started, this, [this] { mGuard.watch(mProcess->processId()); });
    enter(State::Recording);
}

void Recorder::stop() {
    if (mState == State::Recording)
        enter(State::Ending);
}

QString Recorder::words() const {
    return mProcess ? mProcess->output().text() : QString();
}

bool Recorder::hasEnded() const {
    return isActive() && !mProcess->isActive();
}

bool Recorder::hasNotStarted() const {
    return mProcess && mProcess->error() == QProcess::FailedToStart;
}

bool Recorder::wasKilled() const {
    return mProcess && mProcess->wasKilled();
}

bool Recorder::fileAs(const QString& target) {
    if (!isOwnPlainFile(mCapture))
        return false;
    if (whyNotOwn(target).isEmpty() &&
        std::rename(QFile::encodeName(mCapture).constData(), QFile::encodeName(target).constData()) == 0) {
        mCapture = target;
        mFate = Fate::Filed;
    } else {
        mLateTarget = target;
        mFate = Fate::FiledLater;
    }
    return true;
}

CaptureOutcome::How Recorder::howItEnded() const {
    using How = CaptureOutcome::How;
    if (hasNotStarted())
        return How::NotStarted;
    if (wasKilled())
        return How::Killed;
    if (mProcess->exitStatus() == QProcess::CrashExit)
        return How::Crashed;
    return mState == State::Ending ? How::Stopped : How::LeftEarly;
}

QString Recorder::whyNoSound(CaptureOutcome::How how) const {
    if (mFate == Fate::Discarded)
        return QStringLiteral("it was discarded");
    if (how == CaptureOutcome::How::NotStarted)
        return QStringLiteral("%1 could not be started").arg(program());
    const auto written = FileIdentity::of(mCapture);
    if (written && isOwnPlainFile(mCapture) && written->size > WavHeader::kPlainSize)
        return QString();
    return QStringLiteral("the recorder wrote nothing");
}

QString Recorder::moveToLateTarget() {
    const QString failure = moveOwnFile(mCapture, mLateTarget);
    if (failure.isEmpty())
        mCapture = mLateTarget;
    return failure;
}

Recorder::Conclusion Recorder::conclude() {
    using How = CaptureOutcome::How;
    Conclusion conclusion;
    CaptureOutcome& outcome = conclusion.outcome;
    outcome.how = howItEnded();
    outcome.words = words();
    outcome.noFile = whyNoSound(outcome.how);
    if (!outcome.noFile.isEmpty()) {
        // Discarded, or a header without sound, which nobody could miss.
        if (isOwnPlainFile(mCapture))
            QFile::remove(mCapture);
    } else {
        if (outcome.how == How::Killed)
            repairUnfinishedWav(mCapture, parent());
        if (mFate == Fate::FiledLater)
            conclusion.failure = outcome.noFile = moveToLateTarget();
        if (outcome.noFile.isEmpty())
            outcome.file = mCapture;
    }
    const bool servesRun = mPurpose == Purpose::Run && !outcome.file.isEmpty();
    conclusion.isTestRecording = mFate == Fate::Open && (servesRun || outcome.how == How::Stopped);
    enter(State::Absent);
    return conclusion;
}
