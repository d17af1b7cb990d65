#include "tools/nvh-tool/AnalyseCommand.h"

#include "nvh/engine/NVHWorker.h"
#include "tools/nvh-tool/PackageOutcome.h"

#include <QCoreApplication>
#include <QTimer>

namespace {

const QStringList kChannels = {QStringLiteral("sum"), QStringLiteral("left"), QStringLiteral("right")};
const QStringList kFftSizes = {QStringLiteral("2048"), QStringLiteral("4096"), QStringLiteral("8192"),
                               QStringLiteral("16384")};

}  // namespace

QList<QCommandLineOption> AnalyseCommand::options() const {
    return {
        {QStringLiteral("channel"), QStringLiteral("sum, left or right; left by default."), QStringLiteral("CHANNEL"),
         QStringLiteral("left")},
        {QStringLiteral("fft"), QStringLiteral("2048, 4096, 8192 or 16384; 8192 by default."), QStringLiteral("SIZE"),
         QStringLiteral("8192")},
    };
}

int AnalyseCommand::run(const QCommandLineParser& parser, const QStringList& arguments, HostServices& services) {
    const QString channel = parser.value(QStringLiteral("channel"));
    const QString fft = parser.value(QStringLiteral("fft"));
    if (!arguments.isEmpty())
        return refuse(QStringLiteral("analyse: unexpected \"%1\"").arg(arguments.first()));
    if (!kChannels.contains(channel))
        return refuse(QStringLiteral("--channel: \"%1\" is none of sum, left, right").arg(channel));
    if (!kFftSizes.contains(fft))
        return refuse(QStringLiteral("--fft: \"%1\" is none of 2048, 4096, 8192, 16384").arg(fft));

    services.startTrace();
    NVHWorker worker(AppModeNvh);
    PackageOutcome outcome(worker.packageManager());
    worker.setMicChannel(int(kChannels.indexOf(channel)));
    worker.setFreqResolution(int(kFftSizes.indexOf(fft)));
    worker.setSaveOnlyState(true);
    bool packaging = false;
    QObject::connect(&worker, &NVHWorker::finished, &worker, [&packaging] { packaging = true; });
    QObject::connect(&outcome, &PackageOutcome::settled, &worker, [&] {
        if (outcome.hasFailed())
            say(outcome.reason());
        else
            print(worker.packageManager().packageName());
        QCoreApplication::exit(outcome.hasFailed() ? ExitFailed : ExitDone);
    });
    QTimer::singleShot(0, &worker, [&] {
        say(QStringLiteral("analysing %1").arg(cRecordingFilename.value()));
        worker.startProcessingResults();
        worker.whenSettled(&worker, [&] {
            if (packaging)
                return;
            say(QStringLiteral("the analysis program could not be run; nothing is packed"));
            QCoreApplication::exit(ExitFailed);
        });
    });
    return QCoreApplication::exec();
}
