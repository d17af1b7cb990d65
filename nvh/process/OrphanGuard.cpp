#include "nvh/process/OrphanGuard.h"

#include "nvh/process/ChildProcess.h"

#include <QFile>

namespace {

// The start time of a process, which tells it from a later one that got its number. The name, which stands between
// brackets before it, may hold anything.
QString startTime(qint64 processId) {
    QFile file(QStringLiteral("/proc/%1/stat").arg(processId));
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    const QString fields = QString::fromLocal8Bit(file.readAll());
    return fields.mid(fields.lastIndexOf(QLatin1Char(')')) + 2).section(QLatin1Char(' '), 19, 19);
}

// $1 is the program, $2 its start time.
const QString kScript = QStringLiteral(
    "read -r _; sleep 3; [ \"$(sed 's/.*) //' \"/proc/$1/stat\" | cut -d ' ' -f 20)\" = \"$2\" ] && kill -KILL \"$1\"");

}  // namespace

OrphanGuard::OrphanGuard(QObject* parent) : mParent(parent) {}

OrphanGuard::~OrphanGuard() {
    release();
}

void OrphanGuard::watch(qint64 processId) {
    mShell = std::make_unique<ChildProcess>(mParent, ChildProcess::WhenOrphaned::LetLive);
    mShell->start(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), kScript, QStringLiteral("recorder-guard"),
                                              QString::number(processId), startTime(processId)});
}

void OrphanGuard::release() {
    if (!mShell)
        return;
    // Nobody waits for a shell to die; it goes when it has, or with the parent.
    ChildProcess* const shell = mShell.release();
    if (!shell->isActive()) {
        shell->deleteLater();
        return;
    }
    QObject::connect(shell, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), shell, &QObject::deleteLater);
    shell->kill();
}
