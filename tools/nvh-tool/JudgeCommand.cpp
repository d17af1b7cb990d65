#include "tools/nvh-tool/JudgeCommand.h"

#include "nvh/engine/SpectrumTable.h"

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

    const QString name = arguments.first();
    QFile file(name);
    const bool open =
        name == QLatin1String("-") ? file.open(stdin, QIODevice::ReadOnly) : file.open(QIODevice::ReadOnly);
    if (!open)
        return refuse(QStringLiteral("%1: %2").arg(name, file.errorString()));
    const QByteArray table = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return refuse(QStringLiteral("%1: %2").arg(name, file.errorString()));

    const SpectrumTableCheck check = checkSpectrumTable(table);
    const bool pass = spectrumPasses(table, low, high, level);
    const QString line = QStringLiteral("%1: line %2: %3").arg(name);
    if (check.isEmpty)
        say(QStringLiteral("%1: the table is empty").arg(name));
    else if (!check.hasNumbers)
        return refuse(line.arg(check.firstLine).arg(QStringLiteral("no table, there is not a number in it")));
    else if (pass && !check.hasLevels)
        return refuse(line.arg(check.firstLine).arg(QStringLiteral("no table, no line has a frequency and a level")));
    else if (pass && check.isCut)
        return refuse(line.arg(check.lastLine).arg(QStringLiteral("cut off, it has less than four fields")));
    print(pass ? QStringLiteral("PASS") : QStringLiteral("FAIL"));
    return pass ? ExitDone : ExitFailed;
}
