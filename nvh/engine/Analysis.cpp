#include "nvh/engine/Analysis.h"

#include "nvh/process/ChildProcess.h"

Analysis::Analysis(QObject* parent) : QObject(parent) {}

QString Analysis::program() {
    return QStringLiteral("/usr/local/bin/whine");
}

void Analysis::start(const QStringList& arguments, int longestMs) {
    if (!mProcess) {
        mProcess = new ChildProcess(parent());
        connect(mProcess, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this, &Analysis::conclude);
        connect(mProcess, &QProcess::errorOccurred, this, &Analysis::heedError);
    }
    mOutcome = {};
    mProcess->start(program(), arguments, QIODevice::ReadWrite);
    mProcess->setTimeLimit(longestMs);
}

bool Analysis::isActive() const {
    return mProcess && mProcess->isActive();
}

void Analysis::conclude() {
    using How = AnalysisOutcome::How;
    mOutcome.exitCode = mProcess->exitCode();
    mOutcome.table = mProcess->output().bytes();
    mOutcome.summary = mProcess->errors().text();
    if (mProcess->hasTimedOut())
        mOutcome.how = How::TimedOut;
    else if (mProcess->exitStatus() == QProcess::CrashExit)
        mOutcome.how = How::Crashed;
    else
        mOutcome.how = mOutcome.exitCode == 0 ? How::Done : How::Failed;
    emit ended();
}

void Analysis::heedError() {
    if (mProcess->error() == QProcess::FailedToStart)
        mOutcome.how = AnalysisOutcome::How::NotStarted;
    emit failed();
}
