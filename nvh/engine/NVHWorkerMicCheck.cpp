// The microphone check that follows a "Mic Test" recording.

#include "nvh/engine/NVHWorker.h"
#include "nvh/packaging/ChildProcess.h"

#include <HelixDash/services/Logger.h>

#include <QFile>

namespace {

// A check that has not ended by then does not keep a package waiting any longer.
constexpr int kMicCheckLimitMs = 30000;

}  // namespace

void NVHWorker::startMicCheck() {
    if (!mMicCheck)
        mMicCheck = makeProcess(&NVHWorker::micCheckDone, &NVHWorker::micCheckError);
    startProcess(mMicCheck, QStringLiteral("/usr/bin/check-mic"),
                 {cRecordingFilename.value(), cRmsThres.value(), cDbDiffThres.value()});
    mMicCheckTimer.start(kMicCheckLimitMs, mMicCheck, &QProcess::kill);
}

void NVHWorker::micCheckDone() {
    if (!mMicCheck) {
        Logger(this, "WARN") << "micCheck null";
        return;
    }
    const QString report = QStringLiteral("check-mic %1 %2 \n%3")
                               .arg(cRmsThres.value(), cDbDiffThres.value(), QString::fromUtf8(mMicCheck->readAll()));
    Logger(this, "INFO") << report;
    emit updateFeedbackLabel(report);
    QFile file(cMicCheckFilename.value());
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        file.write(report.toUtf8());
        file.close();
    }
    releaseMicCheck();
    resumeWhatWaited();
}

void NVHWorker::micCheckError() {
    const QString output = mMicCheck ? QString::fromUtf8(mMicCheck->readAll()) : QString();
    Logger(this, "INFO") << "MicCheck:" << output;
    emit updateFeedbackLabel(QStringLiteral("Error executing the mic-check utility\n%1").arg(output));
    if (mMicCheck) {
        mMicCheckTimer.stop();
        mMicCheck->deleteLater();
        mMicCheck = nullptr;
    }
    resumeWhatWaited();
}

void NVHWorker::releaseMicCheck() {
    mMicCheckTimer.stop();
    if (!mMicCheck)
        return;
    endChildProcess(mMicCheck);
    mMicCheck->deleteLater();
    mMicCheck = nullptr;
}
