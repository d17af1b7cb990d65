// Measures the recorder on this machine, each figure beside what it is compared with. Needs the bench; bench/measure
// starts both.

#include "bench/measuring/Measurements.h"
#include "host/setup/HostServices.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdio>

namespace {

int refuse(const QString& reason) {
    std::fprintf(stderr, "nvh-measure: %s\n", qPrintable(reason));
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    LoopWatch<QCoreApplication> application(argc, argv);
    const std::vector<Measurement> measurements = {packingMeasurement(), loggerMeasurement(),
                                                   testRunMeasurement(application), whineMeasurement(),
                                                   canMeasurement()};
    QStringList names;
    for (const Measurement& measurement : measurements)
        names.append(measurement.name);

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Measures the NVH recorder. Measurements: %1.").arg(names.join(QLatin1String(", "))));
    HostOptions::addTo(parser);
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("NAME"), QStringLiteral("The measurements to make; all by default."),
                                 QStringLiteral("[NAME…]"));
    parser.process(application);
    for (const QString& name : parser.positionalArguments()) {
        if (!names.contains(name))
            return refuse(QStringLiteral("there is no measurement \"%1\"").arg(name));
    }
    QString error;
    const auto options = HostOptions::read(parser, &error);
    HostServices services;
    if (!options || !services.open(*options, &error))
        return refuse(error);
    services.startTrace();

    bool allWell = true;
    for (const Measurement& measurement : measurements) {
        if (!parser.positionalArguments().isEmpty() && !parser.positionalArguments().contains(measurement.name))
            continue;
        QString reason;
        const std::vector<Figure> figures = measurement.run(reason);
        for (const Figure& figure : figures) {
            printFigure(figure);
            allWell = allWell && figure.asWanted();
        }
        if (!reason.isEmpty()) {
            std::fprintf(stderr, "nvh-measure: %s: %s\n", qPrintable(measurement.name), qPrintable(reason));
            allWell = false;
        }
    }
    return allWell ? 0 : 1;
}
