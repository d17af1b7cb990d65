// gateway-sim: the vehicle gateway's UDP side on a desk.

#include "bench/gateway/GatewayOptions.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <csignal>
#include <cstdio>
#include <sys/signalfd.h>

namespace {

constexpr int kUnusable = 2;

int unusable(const QString& reason) {
    std::fprintf(stderr, "gateway-sim: %s\n", qPrintable(reason));
    return kUnusable;
}

std::optional<Recording> readRecording(const GatewayOptions& options, QString* error) {
    if (options.logPath.isEmpty())
        return readMotorTrace(options.tracePath, options.periodMs, options.address, error);
    auto log = CandumpLog::read(options.logPath, options.buses, error);
    if (!log)
        return std::nullopt;
    const QString leftOut = log->leftOut();
    if (!leftOut.isEmpty())
        std::fprintf(stderr, "gateway-sim: %s: left out %s\n", qPrintable(options.logPath), qPrintable(leftOut));
    return std::move(log->recording());
}

// From here on SIGTERM and SIGINT end nothing but wait to be read. -1 if that cannot be had.
int endSignals() {
    sigset_t ending;
    sigemptyset(&ending);
    sigaddset(&ending, SIGTERM);
    sigaddset(&ending, SIGINT);
    sigprocmask(SIG_BLOCK, &ending, nullptr);
    return signalfd(-1, &ending, SFD_CLOEXEC);
}

}  // namespace

int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("gateway-sim"));

    QString error;
    const auto options = GatewayOptions::read(QCoreApplication::arguments(), &error);
    if (!options)
        return unusable(error);
    const auto recording = readRecording(*options, &error);
    if (!recording)
        return unusable(error);

    const QSocketNotifier end(endSignals(), QSocketNotifier::Read);
    QObject::connect(&end, &QSocketNotifier::activated, &QCoreApplication::quit);
    Gateway gateway(*recording, options->gateway, Faults(options->faults, options->seed, options->delayMs));
    if (!gateway.listen(&error))
        return unusable(error);
    std::printf("gateway-sim listens on %s:%d, acknowledges to port %d, sends frames to port %d\n",
                qPrintable(options->gateway.address.toString()), gateway.port(), options->gateway.ackPort,
                options->gateway.dataPort);
    std::fflush(stdout);
    const int status = QCoreApplication::exec();
    std::printf("gateway-sim: %s\n", qPrintable(gateway.summary()));
    return status;
}
