#include "tools/nvh-tool/JudgeCommand.h"

#include "nvh/engine/NVHWorker.h"

#include <QFile>

#include <cmath>
#include <cstdio>

QList<QCommandLineOption> JudgeCommand::options() const {
    return {
        {QStringLiteral("band"), QStringLiteral("Whole frequencies in Hz, both included."), QStringLiteral("LOW:HIGH")},
        {QStringLiteral("threshold"), QStringLiteral("A level above it fails."), QStringLiteral("LEVEL")},
    };
}

int JudgeCommand::run(const QCommandLineParser& parser, const QStringList& arguments, HostServices&) {
    if (arguments.size() != 1)
        return refuse(QStringLiteral("judge: one table is needed, a file or -"));
    const QString band = parser.value(QStringLiteral("band"));
    const QString threshold = parser.value(QStringLiteral("threshold"));
    bool lowOk = false;
    bool highOk = false;
    bool levelOk = false;
    const int low = band.section(QLatin1Char(':'), 0, 0).toInt(&lowOk);
    const int high = band.section(QLatin1Char(':'), 1).toInt(&highOk);
    const double level = threshold.toDouble(&levelOk);
    if (!lowOk || !highOk || low > high)
        return refuse(QStringLiteral("--band: \"%1\" is not LOW:HIGH in whole Hz").arg(band));
    if (!levelOk || std::isnan(level))
        return refuse(QStringLiteral("--threshold: \"%1\" is not a number").arg(threshold));

    QFile file(arguments.first());
    const bool open = arguments.first() == QLatin1String("-") ? file.open(stdin, QIODevice::ReadOnly)
                                                              : file.open(QIODevice::ReadOnly);
    if (!open)
        return refuse(QStringLiteral("%1: %2").arg(arguments.first(), file.errorString()));
    const bool pass = NVHWorker(AppModeNvh).resultsCheck(file.readAll(), low, high, level);
    print(pass ? QStringLiteral("PASS") : QStringLiteral("FAIL"));
    return pass ? ExitDone : ExitFailed;
}
