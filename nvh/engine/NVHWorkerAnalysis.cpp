// The analysis program, and the judgement of its table.

#include "nvh/engine/NVHWorker.h"
#include "nvh/engine/SpectrumTable.h"
#include "nvh/process/ChildProcess.h"

#include <HelixDash/services/Logger.h>

void NVHWorker::startProcessingResults() {
    const QStringList arguments = {cRecordingFilename.value(), cRpmFileName.value(), parseMicChannel(), parseFftSize()};
    Logger(this, "INFO") << "Starting process:" << Analysis::program() << bracketed(arguments);
    mAnalysis.start(arguments, cNVHTimeoutMs.value());
    mRun = Run::Idle;
}

void NVHWorker::resultsError() {
    Logger(this, "ERROR") << "An error occurred during results/whine process.";
    // A program that crashed or was killed still reports its end.
    if (mAnalysis.outcome().how == AnalysisOutcome::How::NotStarted)
        resume();
}

bool NVHWorker::resultsCheck(const QByteArray& table, int lowFrequency, int highFrequency, double threshold) {
    return spectrumPasses(table, lowFrequency, highFrequency, threshold);
}
