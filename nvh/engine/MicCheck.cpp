#include "nvh/engine/MicCheck.h"

#include "nvh/engine/Settings.h"
#include "nvh/process/ChildProcess.h"

#include <utility>

namespace {

// A check that has not ended by then does not keep a package waiting any longer.
constexpr int kLimitMs = 30000;

}  // namespace

MicCheck::MicCheck(QObject* parent) : QObject(parent) {}

QString MicCheck::program() {
    return QStringLiteral("/usr/bin/check-mic");
}

QStringList MicCheck::arguments() {
    return {cRecordingFilename.value(), cRmsThres.value(), cDbDiffThres.value()};
}

void MicCheck::start() {
    if (isActive())
        return;
    mProcess = new ChildProcess(parent());
    // The program says what is wrong on standard error; it belongs to the report.
    mProcess->setProcessChannelMode(QProcess::MergedChannels);
    connect(mProcess, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this, &MicCheck::ended);
    connect(mProcess, &QProcess::errorOccurred, this, &MicCheck::failed);
    mProcess->start(program(), arguments(), QIODevice::ReadWrite);
    mProcess->setTimeLimit(kLimitMs);
}

QString MicCheck::words() const {
    return mProcess ? mProcess->output().text() : QString();
}

void MicCheck::release() {
    ChildProcess* const process = std::exchange(mProcess, nullptr);
    if (!process)
        return;
    process->disconnect(this);
    process->kill();
    // Later, since this may be called from one of its own signals.
    process->deleteLater();
}
