// The analysis program, and the judgement of its table.

#include "nvh/engine/NVHWorker.h"
#include "nvh/engine/SpectrumTable.h"
#include "nvh/process/ChildProcess.h"

#include <HelixDash/services/Logger.h>

void NVHWorker::startProcessingResults() {
    if (!mAnalysis) {
        mAnalysis = new ChildProcess(this);
        // Whoever hears of the end can ask how it was.
        connect(mAnalysis, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
                &NVHWorker::concludeAnalysis);
        connect(mAnalysis, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this, &NVHWorker::resultsDone);
        connect(mAnalysis, &QProcess::errorOccurred, this, &NVHWorker::resultsError);
    }
    mAnalysisOutcome = {};
    startProcess(mAnalysis, QStringLiteral("/usr/local/bin/whine"),
                 {cRecordingFilename.value(), cRpmFileName.value(), parseMicChannel(), parseFftSize()});
    mAnalysis->setTimeLimit(cNVHTimeoutMs.value());
    mRun = Run::Idle;
}

void NVHWorker::concludeAnalysis() {
    using How = AnalysisOutcome::How;
    mAnalysisOutcome.exitCode = mAnalysis->exitCode();
    mAnalysisOutcome.table = mAnalysis->output().bytes();
    mAnalysisOutcome.summary = mAnalysis->errors().text();
    if (mAnalysis->hasTimedOut())
        mAnalysisOutcome.how = How::TimedOut;
    else if (mAnalysis->exitStatus() == QProcess::CrashExit)
        mAnalysisOutcome.how = How::Crashed;
    else
        mAnalysisOutcome.how = mAnalysisOutcome.exitCode == 0 ? How::Done : How::Failed;
}

void NVHWorker::resultsError() {
    Logger(this, "ERROR") << "An error occurred during results/whine process.";
    // A program that crashed or was killed still reports its end.
    if (!mAnalysis || mAnalysis->error() != QProcess::FailedToStart)
        return;
    mAnalysisOutcome.how = AnalysisOutcome::How::NotStarted;
    resume();
}

bool NVHWorker::resultsCheck(const QByteArray& table, int lowFrequency, int highFrequency, double threshold) {
    return spectrumPasses(table, lowFrequency, highFrequency, threshold);
}
