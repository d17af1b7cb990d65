#include "tools/nvh-tool/RecordCommand.h"

#include "host/setup/StopSignals.h"
#include "nvh/engine/NVHWorker.h"
#include "tools/nvh-tool/PackageOutcome.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <optional>

namespace {

// No recording is longer, with or without a screen.
constexpr int kLongestSeconds = 700;

enum class Fate { Save, Upload, Discard };

struct RecordOptions {
    QString testType;
    int seconds = kLongestSeconds;
    bool clunk = false;
    Fate fate = Fate::Save;
};

std::optional<RecordOptions> readOptions(const QCommandLineParser& parser, const QStringList& arguments,
                                         QString& error) {
    RecordOptions options;
    const QString list = QStringList(testTypesVsTags.keys()).join(QLatin1String(", "));
    options.testType = parser.value(QStringLiteral("type"));
    bool secondsOk = true;
    if (parser.isSet(QStringLiteral("seconds")))
        options.seconds = parser.value(QStringLiteral("seconds")).toInt(&secondsOk);
    options.clunk = parser.isSet(QStringLiteral("clunk"));
    const bool save = parser.isSet(QStringLiteral("save"));
    const bool upload = parser.isSet(QStringLiteral("upload"));
    const bool discard = parser.isSet(QStringLiteral("discard"));
    options.fate = save ? Fate::Save : upload ? Fate::Upload : Fate::Discard;

    if (!arguments.isEmpty())
        error = QStringLiteral("record: unexpected \"%1\"").arg(arguments.first());
    else if (!testTypesVsTags.contains(options.testType))
        error = QStringLiteral("--type: \"%1\" is none of %2").arg(options.testType, list);
    else if (!secondsOk || options.seconds < 1 || options.seconds > kLongestSeconds)
        error = QStringLiteral("--seconds: \"%1\" is not a whole number from 1 to %2")
                    .arg(parser.value(QStringLiteral("seconds")))
                    .arg(kLongestSeconds);
    else if (save + upload + discard != 1)
        error = QStringLiteral("record: one of --save, --upload and --discard is needed");
    return error.isEmpty() ? std::optional(options) : std::nullopt;
}

// The run itself, from start() to the package's fate.
class TestRun : public QObject {
public:
    TestRun(const RecordOptions& options) : mOptions(options), mWorker(AppModeNvh), mOutcome(mWorker.packageManager()) {
        connect(&mWorker, &NVHWorker::updateFeedbackLabel, this, &TestRun::heedEngine);
        connect(&mWorker, &NVHWorker::startUpdating, this, &TestRun::recordingStarted);
        connect(&mWorker, &NVHWorker::endRecording, this, &TestRun::recordingEnded);
        connect(&mStopSignals, &StopSignals::caught, this, &TestRun::interrupt);
        connect(&mOutcome, &PackageOutcome::settled, this, &TestRun::packageSettled);
        connect(&mEndTimer, &QTimer::timeout, &mWorker, &NVHWorker::stop);
        connect(&mProgressTimer, &QTimer::timeout, this, &TestRun::showProgress);
        mEndTimer.setSingleShot(true);
        // To the millisecond: the recording's length is what was asked for.
        mEndTimer.setTimerType(Qt::PreciseTimer);
        mWorker.setTestType(options.testType);
        mWorker.setClunkButtonState(options.clunk);
        mWorker.setSaveOnlyState(options.fate != Fate::Upload);
    }

    void begin() { mWorker.start(); }

private:
    void recordingStarted() {
        mClock.start();
        mEndTimer.start(mOptions.seconds * 1000);
        mProgressTimer.start(1000);
        say(QStringLiteral("recording \"%1\"").arg(mOptions.testType));
    }

    void showProgress() {
        say(QStringLiteral("%1 s, %2 1/min").arg(mClock.elapsed() / 1000).arg(mWorker.getMotorRPM()));
    }

    void recordingEnded() {
        mEndTimer.stop();
        mProgressTimer.stop();
        say(QStringLiteral("recorded %1 s").arg(double(mClock.elapsed()) / 1000.0, 0, 'f', 1));
        // After the engine has said why, if it stopped by itself.
        QTimer::singleShot(0, this, [this] { mWorker.whenSettled(this, [this] { decide(); }); });
    }

    // While a recording runs, the engine has something to say only if it fails; after it, the microphone check reports.
    void heedEngine(const QString& text) {
        static const QString failure = QStringLiteral("Error with arecord");
        if (text.startsWith(failure)) {
            const QString reason = text.mid(failure.size()).simplified();
            mFailure = QStringLiteral("the recorder failed: %1")
                           .arg(!reason.isEmpty() ? reason : QStringLiteral("/usr/bin/arecord could not be started"));
        } else if (!text.isEmpty()) {
            say(text);
        }
    }

    void decide() {
        if (mDecided)
            return;
        mDecided = true;
        if (!mFailure.isEmpty()) {
            say(mFailure);
            QCoreApplication::exit(ExitFailed);
        } else if (mOptions.fate == Fate::Discard) {
            mWorker.deleteRecordedFiles();
            say(QStringLiteral("discarded"));
            QCoreApplication::exit(ExitDone);
        } else {
            say(mOptions.fate == Fate::Save ? QStringLiteral("packing") : QStringLiteral("packing and uploading"));
            mWorker.resultsDone();
        }
    }

    void packageSettled() {
        if (mOutcome.hasFailed())
            say(mOutcome.reason());
        else
            print(mOptions.fate == Fate::Save ? mWorker.packageManager().packageName() : mOutcome.feedback());
        QCoreApplication::exit(mOutcome.hasFailed() ? ExitFailed : ExitDone);
    }

    // The first interrupt ends the recording, a later one the wait for the server; the package stays.
    void interrupt() {
        mStopSignals.rearm();
        if (mWorker.isRunning()) {
            mWorker.stop();
        } else if (mDecided) {
            say(QStringLiteral("interrupted"));
            QCoreApplication::exit(ExitFailed);
        }
    }

    RecordOptions mOptions;
    NVHWorker mWorker;
    PackageOutcome mOutcome;
    StopSignals mStopSignals;
    QTimer mEndTimer;
    QTimer mProgressTimer;
    QElapsedTimer mClock;
    QString mFailure;
    bool mDecided = false;
};

}  // namespace

QList<QCommandLineOption> RecordCommand::options() const {
    return {
        {QStringLiteral("type"), QStringLiteral("The test type, for example \"65 MPH\"."), QStringLiteral("TYPE")},
        {QStringLiteral("seconds"),
         QStringLiteral("Records that long, 1 to 700 s. Without it until SIGINT, or until the engine stops itself."),
         QStringLiteral("N")},
        {QStringLiteral("clunk"), QStringLiteral("Files the run as one with torque reversal.")},
        {QStringLiteral("save"), QStringLiteral("Keeps the package.")},
        {QStringLiteral("upload"), QStringLiteral("Uploads the package.")},
        {QStringLiteral("discard"), QStringLiteral("Deletes what was recorded.")},
    };
}

int RecordCommand::run(const QCommandLineParser& parser, const QStringList& arguments, HostServices& services) {
    QString error;
    const auto options = readOptions(parser, arguments, error);
    if (!options)
        return refuse(error);
    TestRun run(*options);
    services.startTrace();
    QTimer::singleShot(0, &run, [&run] { run.begin(); });
    return QCoreApplication::exec();
}
