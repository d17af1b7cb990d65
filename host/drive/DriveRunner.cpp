#include "host/drive/DriveRunner.h"

#include "host/setup/PlainText.h"

#include <cmath>
#include <cstdio>
#include <utility>

namespace {

constexpr double kLongestWaitMs = 3600e3;

}  // namespace

DriveRunner::DriveRunner(DriveFile drive, DriveStage stage, QObject* parent)
    : QObject(parent), mDrive(std::move(drive)), mStage(stage) {
    mTimer.setSingleShot(true);
    mTimer.setTimerType(Qt::PreciseTimer);
    connect(&mTimer, &QTimer::timeout, this, &DriveRunner::beginStep);
}

DriveRunner::~DriveRunner() = default;

void DriveRunner::start() {
    mClock.start();
    mTimer.start(0);
}

QByteArray DriveRunner::source() const {
    return PlainText::printable(QString::fromUtf8(step().source));
}

void DriveRunner::beginStep() {
    // The run of the step before has been left by its signal only now.
    mRun.reset();
    if (mStep == mDrive.steps.size()) {
        std::fprintf(stderr, "%8.3f s  %s: all %zu steps held\n", seconds(),
                     PlainText::printable(mDrive.path).constData(), mDrive.steps.size());
        emit finished(true);
        return;
    }
    const double earlyMs = (step().at - seconds()) * 1000.0;
    if (earlyMs > 0.0) {
        mTimer.start(int(std::ceil(std::min(earlyMs, kLongestWaitMs))));
        return;
    }
    std::fprintf(stderr, "%8.3f s  %4d  %s\n", seconds(), step().line, source().constData());
    mRun = StepRun::make(step().action, mStage);
    connect(mRun.get(), &StepRun::held, this, &DriveRunner::stepHeld);
    connect(mRun.get(), &StepRun::failed, this, &DriveRunner::stepFailed);
    mRun->start();
}

void DriveRunner::stepHeld() {
    ++mStep;
    mTimer.start(0);
}

void DriveRunner::stepFailed(const QString& seen) {
    std::fprintf(stderr, "%s:%d: %s\n    failed after %.3f s: %s\n", PlainText::printable(mDrive.path).constData(),
                 step().line, source().constData(), seconds(), PlainText::printable(seen).constData());
    emit finished(false);
}
