// The microphone check that follows a "Mic Test" recording.

#include "nvh/engine/NVHWorker.h"
#include "nvh/files/OwnFile.h"
#include "nvh/process/ChildProcess.h"

#include <HelixDash/services/Logger.h>

#include <utility>

namespace {

// A check that has not ended by then does not keep a package waiting any longer.
constexpr int kMicCheckLimitMs = 30000;

}  // namespace

void NVHWorker::startMicCheck() {
    if (!mMicCheck) {
        mMicCheck = makeProcess(&NVHWorker::micCheckDone, &NVHWorker::micCheckError);
        mMicCheck->setProcessChannelMode(QProcess::MergedChannels);
    }
    startProcess(mMicCheck, QStringLiteral("/usr/bin/check-mic"),
                 {cRecordingFilename.value(), cRmsThres.value(), cDbDiffThres.value()});
    mMicCheck->setTimeLimit(kMicCheckLimitMs);
}

void NVHWorker::micCheckDone() {
    if (!mMicCheck) {
        Logger(this, "WARN") << "micCheck null";
        return;
    }
    const QString report =
        QStringLiteral("check-mic %1 %2 \n%3").arg(cRmsThres.value(), cDbDiffThres.value(), mMicCheck->output().text());
    Logger(this, "INFO") << report;
    emit updateFeedbackLabel(report);
    writeOwnFile(cMicCheckFilename.value(), report.toUtf8());
    std::exchange(mMicCheck, nullptr)->deleteLater();
    resume();
}

void NVHWorker::micCheckError() {
    const QString output = mMicCheck ? mMicCheck->output().text() : QString();
    Logger(this, "INFO") << "MicCheck:" << output;
    emit updateFeedbackLabel(QStringLiteral("Error executing the mic-check utility\n%1").arg(output));
    if (mMicCheck)
        std::exchange(mMicCheck, nullptr)->deleteLater();
    resume();
}

void NVHWorker::releaseMicCheck() {
    // Not from within a signal of the process: nobody who calls this is called by it.
    delete std::exchange(mMicCheck, nullptr);
}
