#include "nvh/process/ChildProcess.h"

#include <csignal>
#include <fcntl.h>
#include <linux/close_range.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr int kFirstOther = 3;  // after the three standard descriptors

// Zero for none.
int orphanSignalFor(ChildProcess::WhenOrphaned whenOrphaned) {
    switch (whenOrphaned) {
        case ChildProcess::WhenOrphaned::Terminate:
            return SIGTERM;
        case ChildProcess::WhenOrphaned::LetLive:
            return 0;
        case ChildProcess::WhenOrphaned::Kill:
            break;
    }
    return SIGKILL;
}

// Runs in the child between fork and exec, where only what is safe in a signal handler is allowed. The descriptor over
// which Qt hears of a failed exec stays open until then, so the others are marked and not closed.
void prepareChild(int orphanSignal, pid_t parent) {
    ::setpgid(0, 0);
    ::umask(S_IRWXG | S_IRWXO);
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    if (::syscall(SYS_close_range, kFirstOther, ~0U, CLOSE_RANGE_CLOEXEC) != 0) {
        const long last = ::sysconf(_SC_OPEN_MAX);
        for (int descriptor = kFirstOther; descriptor < last; ++descriptor)
            ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    }
    ::prctl(PR_SET_PDEATHSIG, orphanSignal);
    // The parent may have died before the signal was asked for.
    if (::getppid() != parent)
        ::_exit(1);
}

}  // namespace

ChildProcess::ChildProcess(QObject* parent, WhenOrphaned whenOrphaned) : QProcess(parent) {
    const int orphanSignal = orphanSignalFor(whenOrphaned);
    // Qt 6 has this; Qt 5 has the virtual setupChildProcess() in its place.
    setChildProcessModifier([orphanSignal, owner = ::getpid()] { prepareChild(orphanSignal, owner); });
    connect(this, &QProcess::readyReadStandardOutput, this, &ChildProcess::readOutput);
    connect(this, &QProcess::readyReadStandardError, this, &ChildProcess::readErrors);
    connect(this, &QProcess::stateChanged, this, [this](QProcess::ProcessState now) {
        if (now == QProcess::Starting) {
            mOutput.clear();
            mErrors.clear();
            mKilled = mTimedOut = false;
        }
        if (now != QProcess::NotRunning)
            return;
        mEnding = false;
        mGrace.stop();
        mTimeLimit.stop();
    });
}

ChildProcess::~ChildProcess() {
    endNow(0);
}

void ChildProcess::readOutput() {
    mOutput.add(readAllStandardOutput());
}

void ChildProcess::readErrors() {
    mErrors.add(readAllStandardError());
}

const ChildOutput& ChildProcess::output() {
    readOutput();
    return mOutput;
}

const ChildOutput& ChildProcess::errors() {
    readErrors();
    return mErrors;
}

bool ChildProcess::hasSucceeded() const {
    return error() == QProcess::UnknownError && exitStatus() == QProcess::NormalExit && exitCode() == 0;
}

void ChildProcess::end(int graceMs) {
    if (!isActive() || mEnding)
        return;
    mEnding = true;
    terminate();
    mGrace.start(graceMs, this, &ChildProcess::killDeaf);
}

void ChildProcess::killDeaf() {
    mKilled = true;
    kill();
}

void ChildProcess::killLate() {
    mTimedOut = true;
    kill();
}

void ChildProcess::endNow(int graceMs) {
    disconnect();
    if (!isActive())
        return;
    if (graceMs > 0) {
        if (!mEnding)
            terminate();
        if (waitForFinished(graceMs))
            return;
    }
    kill();
    waitForFinished();
}

QString bracketed(const QStringList& items) {
    return QLatin1Char('[') + items.join(QLatin1String(", ")) + QLatin1Char(']');
}
