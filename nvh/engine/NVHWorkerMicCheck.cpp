// What the microphone check says of a "Mic Test" recording.

#include "nvh/engine/NVHWorker.h"
#include "nvh/files/OwnFile.h"

#include <HelixDash/services/Logger.h>

void NVHWorker::micCheckDone() {
    if (!mMicCheck.isActive()) {
        Logger(this, "WARN") << "micCheck null";
        return;
    }
    const QString report =
        QStringLiteral("check-mic %1 %2 \n%3").arg(cRmsThres.value(), cDbDiffThres.value(), mMicCheck.words());
    Logger(this, "INFO") << report;
    emit updateFeedbackLabel(report);
    writeOwnFile(cMicCheckFilename.value(), report.toUtf8());
    mMicCheck.release();
    resume();
}

void NVHWorker::micCheckError() {
    const QString output = mMicCheck.words();
    Logger(this, "INFO") << "MicCheck:" << output;
    emit updateFeedbackLabel(QStringLiteral("Error executing the mic-check utility\n%1").arg(output));
    mMicCheck.release();
    resume();
}
