#pragma once

#include "bench/gateway/CandumpLog.h"
#include "bench/gateway/Faults.h"
#include "bench/gateway/Gateway.h"
#include "bench/gateway/MotorTrace.h"

#include <QStringList>

#include <optional>

class QCommandLineParser;

// What gateway-sim is told on its command line.
struct GatewayOptions {
    GatewaySettings gateway;
    // Exactly one of them is given.
    QString logPath;
    QString tracePath;
    CandumpLog::Buses buses;            // of a log
    std::optional<CanAddress> address;  // of a trace
    int periodMs = 10;                  // of a trace
    Faults::Probabilities faults{};
    std::uint64_t seed = 1;
    int delayMs = 200;

    // Nothing, and the reason in one line, for unusable arguments. --help prints and ends the program.
    static std::optional<GatewayOptions> read(const QStringList& arguments, QString* error);
};
