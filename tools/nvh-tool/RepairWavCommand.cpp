#include "tools/nvh-tool/RepairWavCommand.h"

#include "nvh/engine/NVHWorker.h"

#include <QFile>

namespace {

constexpr int kHeaderSize = 44;

// Why the file must not be touched: the repair writes at fixed places, which in any other file are somebody's data.
QString reasonToRefuse(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return file.errorString();
    const QByteArray header = file.read(kHeaderSize);
    if (header.size() < kHeaderSize || !header.startsWith("RIFF") || header.mid(8, 8) != "WAVEfmt " ||
        header.mid(36, 4) != "data")
        return QStringLiteral("no WAV file with the plain header of 44 bytes");
    return QString();
}

}  // namespace

int RepairWavCommand::run(const QCommandLineParser&, const QStringList& arguments, HostServices&) {
    if (arguments.isEmpty())
        return refuse(QStringLiteral("repair-wav: no file is named"));
    NVHWorker worker(AppModeNvh);
    bool allRepaired = true;
    for (QString path : arguments) {
        QString reason = reasonToRefuse(path);
        if (reason.isEmpty() && !worker.fixWavHeader(path))
            reason = QStringLiteral("cannot be written");
        if (reason.isEmpty()) {
            print(path);
        } else {
            say(QStringLiteral("%1: %2").arg(path, reason));
            allRepaired = false;
        }
    }
    return allRepaired ? ExitDone : ExitFailed;
}
