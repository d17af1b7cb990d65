#include "tools/nvh-tool/AnalyseCommand.h"

#include "host/setup/StopSignals.h"
#include "nvh/engine/NVHWorker.h"
#include "nvh/engine/WavHeader.h"
#include "tools/nvh-tool/PackageReason.h"

#include <QCoreApplication>
#include <QTimer>

namespace {

const QStringList kChannels = {QStringLiteral("sum"), QStringLiteral("left"), QStringLiteral("right")};
const QStringList kFftSizes = {QStringLiteral("2048"), QStringLiteral("4096"), QStringLiteral("8192"),
                               QStringLiteral("16384")};

struct AnalyseOptions {
    QString testType;  // empty: the one that was noted with the recording
    int channel = 0;   // position in its list
    int fftSize = 0;
};

// The analysis of the recording that is there, and the package of it. Ends the event loop with the exit status.
class AnalysisRun : public QObject {
public:
    explicit AnalysisRun(const AnalyseOptions& options) {
        connect(&mStopSignals, &StopSignals::caught, this, &endInterrupted);
        mWorker.packageManager().onOutcome(this, [this](const PackageOutcome& outcome) { packageSettled(outcome); });
        if (!options.testType.isEmpty())
            mWorker.setTestType(options.testType);
        mWorker.setMicChannel(options.channel);
        mWorker.setFreqResolution(options.fftSize);
        mWorker.setSaveOnlyState(true);
    }

    void begin() {
        const QString recording = cRecordingFilename.value();
        const WavHeader header = WavHeader::of(recording);
        if (!header.isWav()) {
            say(header.error().isEmpty() ? QStringLiteral("%1 is no WAV file").arg(recording)
                                         : QStringLiteral("no recording: %1: %2").arg(recording, header.error()));
            QCoreApplication::exit(ExitFailed);
            return;
        }
        say(QStringLiteral("analysing %1").arg(recording));
        mWorker.startProcessingResults();
        mWorker.whenSettled(this, [this] { analysed(); });
    }

private:
    void analysed() {
        const AnalysisOutcome& outcome = mWorker.analysisOutcome();
        if (!outcome.table.isEmpty())
            print(QString::fromLocal8Bit(outcome.table).chopped(outcome.table.endsWith('\n') ? 1 : 0));
        say(outcome.summary);
        const QString reason = reasonOfFailure(outcome);
        mFailed = !reason.isEmpty();
        if (mFailed)
            say(reason);
        if (outcome.how == AnalysisOutcome::How::NotStarted)
            QCoreApplication::exit(ExitFailed);
    }

    // Empty if the program has done its work.
    static QString reasonOfFailure(const AnalysisOutcome& outcome) {
        using How = AnalysisOutcome::How;
        switch (outcome.how) {
            case How::NotStarted:
                return QStringLiteral("the analysis program could not be started; nothing is packed");
            case How::Crashed:
                return QStringLiteral("the analysis program crashed");
            case How::TimedOut:
                return QStringLiteral("the analysis program was killed after %1 ms").arg(cNVHTimeoutMs.value());
            case How::None:
            case How::Done:
            case How::Failed:
                break;
        }
        return outcome.how == How::Done && outcome.exitCode == 0
                   ? QString()
                   : QStringLiteral("the analysis program failed with exit status %1").arg(outcome.exitCode);
    }

    void packageSettled(const PackageOutcome& outcome) {
        say(outcome.isGood() ? QStringLiteral("packed: %1").arg(outcome.package) : reasonOf(outcome));
        QCoreApplication::exit(outcome.isGood() && !mFailed ? ExitDone : ExitFailed);
    }

    StopSignals mStopSignals;
    NVHWorker mWorker{AppModeNvh};
    bool mFailed = true;  // until the analysis has done its work
};

}  // namespace

QList<QCommandLineOption> AnalyseCommand::options() const {
    return {
        {QStringLiteral("type"), QStringLiteral("The test type; by default the one noted with the recording."),
         QStringLiteral("TYPE")},
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
    const QString type = parser.value(QStringLiteral("type"));
    if (parser.isSet(QStringLiteral("type")) && !testTypesVsTags.contains(type))
        return refuse(unknownTestType(type));
    if (!kChannels.contains(channel))
        return refuse(QStringLiteral("--channel: \"%1\" is none of sum, left, right").arg(channel));
    if (!kFftSizes.contains(fft))
        return refuse(QStringLiteral("--fft: \"%1\" is none of 2048, 4096, 8192, 16384").arg(fft));

    AnalysisRun run({type, int(kChannels.indexOf(channel)), int(kFftSizes.indexOf(fft))});
    services.startTrace();
    QTimer::singleShot(0, &run, [&run] { run.begin(); });
    return QCoreApplication::exec();
}
