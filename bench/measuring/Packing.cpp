#include "bench/measuring/Measurements.h"
#include "bench/measuring/SampleRecording.h"
#include "nvh/packaging/NvhPackageManager.h"

#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

namespace {

constexpr int kSeconds = 60;
constexpr int kRounds = 5;

double packWithManager(const QString& directory, const QString& recording) {
    const QString loose = directory + QStringLiteral("/loose.wav");
    QFile::copy(recording, loose);
    QString package = directory + QStringLiteral("/managed.tgz");
    QStringList files{loose};
    NvhPackageManager manager;
    manager.setSaveOnlyState(true);
    QEventLoop loop;
    QObject::connect(&manager, &NvhPackageManager::fileSaved, &loop, &QEventLoop::quit);
    return secondsOf([&] {
        manager.startPackageManagerProcess(package, files);
        loop.exec();
    });
}

double packWithShell(const QString& directory, const QString& recording) {
    return secondsOf([&] {
        QProcess::execute(
            QStringLiteral("/bin/sh"),
            {QStringLiteral("-c"), QStringLiteral("tar -cvf - %1 2>/dev/null | gzip -5 > %2/bare.tgz; sync %2/bare.tgz")
                                       .arg(recording, directory)});
    });
}

std::vector<Figure> measure(QString& error) {
    const QTemporaryDir directory;
    const QString recording = directory.filePath(QStringLiteral("recording.wav"));
    if (!writeSampleRecording(recording, kSeconds)) {
        error = QStringLiteral("%1 cannot be written").arg(recording);
        return {};
    }
    std::vector<double> managed;
    std::vector<double> bare;
    // Side by side, so that whatever else the machine does hits both.
    for (int round = 0; round < kRounds; ++round) {
        managed.push_back(packWithManager(directory.path(), recording));
        bare.push_back(packWithShell(directory.path(), recording));
    }
    Figure figure;
    figure.what = QStringLiteral("packing 60 s of recording");
    figure.measured = QStringLiteral("%1 s").arg(median(managed), 0, 'f', 3);
    figure.reference = QStringLiteral("tar | gzip -5, sync: %1 s").arg(median(bare), 0, 'f', 3);
    figure.value = median(managed) / median(bare);
    figure.atMost = 1.05;
    return {figure};
}

}  // namespace

Measurement packingMeasurement() {
    return {QStringLiteral("packing"), measure};
}
