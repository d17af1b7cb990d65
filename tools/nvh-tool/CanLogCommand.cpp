#include "tools/nvh-tool/CanLogCommand.h"

#include "host/setup/StopSignals.h"
#include "nvh/capture/LoggerRunning.h"
#include "nvh/capture/NvhCanEth.h"

#include <HelixDash/services/RuntimeEnv.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QThread>
#include <QTimer>

#include <optional>

namespace {

constexpr int kLongestSeconds = 24 * 60 * 60;
constexpr int kHighestBus = 255;
constexpr int kHighestId = 65535;

struct CanLogOptions {
    unsigned char bus = 0;
    unsigned short messageId = 0;
    QString file;
    int seconds = 0;  // 0: until something else ends the run
};

// A whole number of a range, decimal or, where that is usual, 0x….
std::optional<int> readNumber(const QString& text, int lowest, int highest, bool hexadecimal = false) {
    bool ok = false;
    const bool prefixed = text.startsWith(QLatin1String("0x"), Qt::CaseInsensitive);
    const int number = text.toInt(&ok, hexadecimal && prefixed ? 16 : 10);
    return ok && number >= lowest && number <= highest ? std::optional(number) : std::nullopt;
}

std::optional<CanLogOptions> readOptions(const QCommandLineParser& parser, const QStringList& arguments,
                                         QString& error) {
    const QString bus = parser.value(QStringLiteral("bus"));
    const QString id = parser.value(QStringLiteral("id"));
    const QString file = parser.value(QStringLiteral("file"));
    const QString seconds = parser.value(QStringLiteral("seconds"));
    const bool timed = parser.isSet(QStringLiteral("seconds"));
    const auto busNumber = readNumber(bus, 0, kHighestBus);
    const auto idNumber = readNumber(id, 0, kHighestId, true);
    const auto secondsNumber = timed ? readNumber(seconds, 1, kLongestSeconds) : 0;

    if (!arguments.isEmpty())
        error = QStringLiteral("can-log: unexpected \"%1\"").arg(arguments.first());
    else if (!busNumber)
        error = QStringLiteral("--bus: \"%1\" is not a whole number from 0 to %2").arg(bus).arg(kHighestBus);
    else if (!idNumber)
        error =
            QStringLiteral("--id: \"%1\" is not a whole number from 0 to %2, decimal or 0x…").arg(id).arg(kHighestId);
    else if (file.isEmpty())
        error = QStringLiteral("--file: no file is named");
    else if (!secondsNumber)
        error =
            QStringLiteral("--seconds: \"%1\" is not a whole number from 1 to %2").arg(seconds).arg(kLongestSeconds);
    if (!error.isEmpty())
        return std::nullopt;
    return CanLogOptions{quint8(*busNumber), quint16(*idNumber), file, *secondsNumber};
}

// The run, on a thread of its own, from the request to the client's end. The engine's thread for a CAN client does not
// serve here: it comes with a whole recorder, and the engine can only wait for it, deaf to an interrupt.
class CanLogRun : public QObject {
public:
    explicit CanLogRun(const CanLogOptions& options)
        : mOptions(options), mClient(options.bus, options.messageId, options.file.toLocal8Bit().constData()) {
        connect(&mThread, &QThread::started, &mClient, &NvhCanEth::startLogging);
        connect(&mClient, &NvhCanEth::acknowledged, this, &CanLogRun::acknowledged);
        connect(&mClient, &NvhCanEth::ackFailed, this, &CanLogRun::sayWhyNot);
        connect(&mThread, &QThread::finished, this, &CanLogRun::ended);
        connect(&mStopSignals, &StopSignals::caught, this, &CanLogRun::interrupt);
        connect(&mEndTimer, &QTimer::timeout, this, &CanLogRun::stop);
        connect(&mProgressTimer, &QTimer::timeout, this, &CanLogRun::showProgress);
        mEndTimer.setSingleShot(true);
        mEndTimer.setTimerType(Qt::PreciseTimer);
        mClient.moveToThread(&mThread);
    }

    void begin() {
        say(QStringLiteral("asking the gateway at %1 for message %2 of bus %3")
                .arg(gateway())
                .arg(mOptions.messageId)
                .arg(mOptions.bus));
        loggerRunning = true;
        mThread.start();
    }

private:
    static QString gateway() { return RuntimeEnv::instance()->gatewayAddress().toString(); }

    void acknowledged() {
        mAcknowledged = true;
        mClock.start();
        mProgressTimer.start(1000);
        if (mOptions.seconds > 0)
            mEndTimer.start(mOptions.seconds * 1000);
        say(QStringLiteral("acknowledged, logging to %1").arg(mOptions.file));
    }

    // The client gives up without a log file as it does without an answer.
    void sayWhyNot() {
        QFile file(mOptions.file);
        if (file.open(QIODevice::Append))
            say(QStringLiteral("the gateway at %1 did not acknowledge").arg(gateway()));
        else
            say(QStringLiteral("%1: %2").arg(mOptions.file, file.errorString()));
    }

    void showProgress() {
        say(QStringLiteral("%1 s, %2 frames, %3 1/min")
                .arg(qRound(double(mClock.elapsed()) / 1000.0))
                .arg(mClient.framesLogged())
                .arg(mClient.lastMotorRPM()));
    }

    void stop() { loggerRunning = false; }

    // An answer that is under way is waited for, so that the gateway can be told to stop. Nobody is held up by that:
    // the next interrupt ends the process.
    void interrupt() {
        stop();
        if (!mAcknowledged)
            say(QStringLiteral("waiting for the gateway's answer; interrupt again to leave at once"));
    }

    void ended() {
        // Nothing is to be said behind the last line.
        mProgressTimer.stop();
        mThread.wait();
        mClient.deinitSockets();
        if (mAcknowledged)
            say(QStringLiteral("logged %1 frames in %2 s")
                    .arg(mClient.framesLogged())
                    .arg(double(mClock.elapsed()) / 1000.0, 0, 'f', 1));
        if (mClient.framesLost() > 0)
            say(QStringLiteral("%1 frames could not be written to %2").arg(mClient.framesLost()).arg(mOptions.file));
        QCoreApplication::exit(mAcknowledged ? ExitDone : ExitFailed);
    }

    CanLogOptions mOptions;
    NvhCanEth mClient;  // on mThread
    QThread mThread;
    StopSignals mStopSignals;
    QTimer mEndTimer;
    QTimer mProgressTimer;
    QElapsedTimer mClock;  // since the acknowledgement
    bool mAcknowledged = false;
};

}  // namespace

QList<QCommandLineOption> CanLogCommand::options() const {
    return {
        {QStringLiteral("bus"), QStringLiteral("The CAN bus, 0 to 255."), QStringLiteral("B")},
        {QStringLiteral("id"), QStringLiteral("The CAN message's id, 0 to 65535, decimal or 0x…."),
         QStringLiteral("ID")},
        {QStringLiteral("file"), QStringLiteral("The log file; one that is there is replaced."),
         QStringLiteral("FILE")},
        {QStringLiteral("seconds"),
         QStringLiteral(
             "Logs that long, 1 to 86400 s from the gateway's acknowledgement. Without it until an interrupt."),
         QStringLiteral("N")},
    };
}

int CanLogCommand::run(const QCommandLineParser& parser, const QStringList& arguments, HostServices&) {
    QString error;
    const auto options = readOptions(parser, arguments, error);
    if (!options)
        return refuse(error);
    CanLogRun run(*options);
    QTimer::singleShot(0, &run, [&run] { run.begin(); });
    return QCoreApplication::exec();
}
