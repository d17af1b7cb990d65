#include "tools/nvh-tool/RepairWavCommand.h"

#include "nvh/engine/WavHeader.h"

namespace {

// Why the file is not whole; empty if it is now. The repair writes at fixed places, which in any other file are
// somebody's data.
QString reasonNotWhole(const QString& path) {
    const WavHeader header = WavHeader::of(path);
    if (!header.error().isEmpty())
        return header.error();
    if (!header.isPlain())
        return QStringLiteral("no WAV file with the plain header of 44 bytes");
    return repairUnfinishedWav(path, nullptr) ? QString() : QStringLiteral("cannot be written");
}

}  // namespace

int RepairWavCommand::run(const QCommandLineParser&, const QStringList& arguments, HostServices&) {
    if (arguments.isEmpty())
        return refuse(QStringLiteral("repair-wav: no file is named"));
    bool allWhole = true;
    for (const QString& path : arguments) {
        const QString reason = reasonNotWhole(path);
        if (reason.isEmpty()) {
            print(path);
        } else {
            say(QStringLiteral("%1: %2").arg(path, reason));
            allWhole = false;
        }
    }
    return allWhole ? ExitDone : ExitFailed;
}
