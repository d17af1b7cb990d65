// The analysis program and the results file.

#include "nvh/engine/NVHWorker.h"
#include "nvh/engine/SpectrumTable.h"
#include "nvh/packaging/ChildProcess.h"

#include <HelixDash/services/Logger.h>

#include <QFile>

void NVHWorker::startProcessingResults() {
    if (!mAnalysis)
        mAnalysis = makeProcess(&NVHWorker::resultsDone, &NVHWorker::resultsError);
    startProcess(mAnalysis, QStringLiteral("/usr/local/bin/whine"),
                 {cRecordingFilename.value(), cRpmFileName.value(), parseMicChannel(), parseFftSize()});
    mAnalysisTimer.start(cNVHTimeoutMs.value(), mAnalysis, &QProcess::kill);
    mRunning = false;
}

void NVHWorker::resultsDone() {
    // What is still being written belongs into this package.
    if (recorderIsEnding() || isActive(mMicCheck)) {
        mResultsWanted = true;
        return;
    }
    if (!isActive(mAnalysis))
        mAnalysisTimer.stop();
    Logger(this, "INFO") << "Results done";
    QFile file(cResultsFileName.value());
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        file.write(QStringLiteral("SkippedQ5").toLocal8Bit());
        file.close();
    }
    renameFiles(true);
    emit finished(true);
    resumeWhatWaited();
}

void NVHWorker::resultsError() {
    if (!isActive(mAnalysis))
        mAnalysisTimer.stop();
    Logger(this, "ERROR") << "An error occurred during results/whine process.";
    // A program that crashed or was killed still reports its end.
    if (mAnalysis && mAnalysis->error() == QProcess::FailedToStart)
        resumeWhatWaited();
}

bool NVHWorker::resultsCheck(const QByteArray& table, int lowFrequency, int highFrequency, double threshold) {
    return spectrumPasses(table, lowFrequency, highFrequency, threshold);
}
