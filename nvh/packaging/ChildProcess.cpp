#include "nvh/packaging/ChildProcess.h"

void endChildProcess(QProcess* process, int graceMs) {
    if (!process)
        return;
    process->disconnect();
    if (!isActive(process))
        return;
    if (graceMs > 0) {
        process->terminate();
        if (process->waitForFinished(graceMs))
            return;
    }
    process->kill();
    process->waitForFinished(-1);
}

bool isActive(const QProcess* process) {
    return process && process->state() != QProcess::NotRunning;
}

bool hasSucceeded(const QProcess* process) {
    return process->error() == QProcess::UnknownError && process->exitStatus() == QProcess::NormalExit &&
           process->exitCode() == 0;
}

bool wasCutOff(const QProcess* curl) {
    constexpr int partialFile = 18;  // by curl's manual
    return curl->exitStatus() == QProcess::NormalExit && curl->exitCode() == partialFile;
}
