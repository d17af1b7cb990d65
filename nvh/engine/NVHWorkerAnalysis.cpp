// The analysis program, the results file, and the judgement of a spectrum table.

#include "nvh/engine/NVHWorker.h"
#include "nvh/packaging/ChildProcess.h"

#include <HelixDash/services/Logger.h>

#include <QFile>
#include <QRegularExpression>
#include <QTextStream>

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
    static const QRegularExpression blanks(QStringLiteral("\\s+"));
    QTextStream lines(table);
    while (!lines.atEnd()) {
        const QStringList fields = lines.readLine().split(blanks);
        const double frequency = fields.value(0).toDouble();
        const double level = fields.value(2).toDouble();
        if (frequency >= lowFrequency && frequency <= highFrequency && level > threshold)
            return false;
    }
    return true;
}
