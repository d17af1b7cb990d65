// drive-trace: what a car's signals look like on a driving cycle.

#include "bench/traces/DriveCycle.h"
#include "bench/traces/ElectricCar.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>

#include <cmath>
#include <cstdio>
#include <optional>

namespace {

constexpr double kMetresPerSecondPerMph = 0.44704;
constexpr int kRowsPerSecond = 10;

int unusable(const QString& reason) {
    std::fprintf(stderr, "drive-trace: %s\n", qPrintable(reason));
    return 2;
}

QString description() {
    return QStringLiteral(
        R"(Turns a driving cycle into a trace of a single-speed electric car at 10 Hz, on standard output:
VAPI_signedVehicleSpeed (mph), VAPI_motorRPM (1/min) and VAPI_torqueCmd (Nm at the motor).

A cycle has the form of a trace: t_s, then speed_m_s or motor_rpm, grade_percent if there is any, and other columns,
which are passed on as they stand. Between its points speed runs on a smooth curve.

The car: 1930 kg, rolling radius 0.334 m, gear 9.004, road load 170 N + 2.0 v + 0.345 v², 430 Nm and 250 kW,
regeneration up to 180 Nm and 60 kW. A cycle that it cannot follow is refused.)");
}

// Fixed notation without a minus before nothing.
QByteArray number(double value, int decimals) {
    const QByteArray text = QByteArray::number(value, 'f', decimals);
    return text.startsWith('-') && text.toDouble() == 0.0 ? text.mid(1) : text;
}

std::optional<QByteArray> traceOf(const DriveCycle& cycle, QString* error) {
    QByteArray trace = "t_s,VAPI_signedVehicleSpeed,VAPI_motorRPM,VAPI_torqueCmd" + cycle.passedOnHeader() + '\n';
    const auto rows = std::lround(std::floor(cycle.duration() * kRowsPerSecond));
    for (long row = 0; row <= rows; ++row) {
        const double now = double(row) / kRowsPerSecond;
        const ElectricCar::Demand demand = cycle.at(now);
        const std::optional<double> torque = ElectricCar::torqueFor(demand);
        if (!torque) {
            *error = QStringLiteral("at %1 s the car cannot do %2 m/s² at %3 m/s")
                         .arg(now)
                         .arg(demand.acceleration, 0, 'f', 2)
                         .arg(demand.speed, 0, 'f', 2);
            return std::nullopt;
        }
        trace += number(now, 1) + ',' + number(demand.speed / kMetresPerSecondPerMph, 2) + ',' +
                 number(ElectricCar::rpmAt(demand.speed), 1) + ',' + number(*torque, 1) +
                 cycle.passedOnCells(row == 0 ? -1.0 : double(row - 1) / kRowsPerSecond, now) + '\n';
    }
    return trace;
}

}  // namespace

int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("drive-trace"));
    QCommandLineParser parser;
    parser.setApplicationDescription(description());
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("cycle"), QStringLiteral("The driving cycle."),
                                 QStringLiteral("CYCLE.csv"));
    if (!parser.parse(QCoreApplication::arguments()))
        return unusable(parser.errorText());
    if (parser.isSet(QStringLiteral("help")))
        parser.showHelp();
    if (parser.positionalArguments().size() != 1)
        return unusable(QStringLiteral("one driving cycle is needed: drive-trace CYCLE.csv"));

    QString error;
    const QString path = parser.positionalArguments().constFirst();
    const std::optional<DriveCycle> cycle = DriveCycle::read(path, &error);
    if (!cycle)
        return unusable(error);
    const std::optional<QByteArray> trace = traceOf(*cycle, &error);
    if (!trace)
        return unusable(path + QStringLiteral(": ") + error);
    if (std::fwrite(trace->constData(), 1, size_t(trace->size()), stdout) != size_t(trace->size()) ||
        std::fflush(stdout) != 0) {
        std::perror("drive-trace: standard output");
        return 1;
    }
    return 0;
}
