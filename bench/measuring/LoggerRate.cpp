#include "bench/measuring/Measurements.h"
#include "nvh/capture/NvhValueLogger.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <cstdio>

namespace {

constexpr int kChanges = 200000;

// Set on this thread, logged on the logger's; the clock stops when the last line is in the file.
double logChanges(QString path) {
    RealDataValue value(QStringLiteral("measured"));
    auto* logger = new NvhValueLogger(path, &value);
    QThread thread;
    logger->moveToThread(&thread);
    QObject::connect(logger, &NvhValueLogger::finished, logger, &QObject::deleteLater);
    thread.start();
    QMetaObject::invokeMethod(logger, &NvhValueLogger::startLogging, Qt::BlockingQueuedConnection);
    return secondsOf([&] {
        for (int change = 1; change <= kChanges; ++change) {
            const DataValue::EventLocker locker(&value);
            value.setValue(change);
        }
        QMetaObject::invokeMethod(logger, &NvhValueLogger::stopLogging, Qt::QueuedConnection);
        thread.wait();
    });
}

double printLines(const QString& path) {
    return secondsOf([&] {
        FILE* file = std::fopen(QFile::encodeName(path).constData(), "w");
        for (int change = 1; change <= kChanges; ++change)
            std::fprintf(file, "%lld, %d\n", static_cast<long long>(change / 1000), change);
        std::fclose(file);
    });
}

std::vector<Figure> measure(QString& error) {
    const QTemporaryDir directory;
    const QString logged = directory.filePath(QStringLiteral("logged.txt"));
    std::vector<double> ours;
    std::vector<double> bare;
    for (int round = 0; round < 3; ++round) {
        ours.push_back(logChanges(logged));
        QFile file(logged);
        const bool open = file.open(QIODevice::ReadOnly);
        const auto lines = open ? file.readAll().count('\n') : 0;
        if (lines != kChanges) {
            error = QStringLiteral("%1 changes, %2 lines").arg(kChanges).arg(lines);
            return {};
        }
        bare.push_back(printLines(directory.filePath(QStringLiteral("bare.txt"))));
    }
    Figure figure;
    figure.what = QStringLiteral("value changes a logger writes, none lost");
    figure.measured = QStringLiteral("%1 /s").arg(kChanges / median(ours), 0, 'f', 0);
    figure.reference = QStringLiteral("fprintf: %1 /s").arg(kChanges / median(bare), 0, 'f', 0);
    figure.value = median(bare) / median(ours);
    return {figure};
}

}  // namespace

Measurement loggerMeasurement() {
    return {QStringLiteral("logger"), measure};
}
