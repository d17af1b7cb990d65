#include "bench/measuring/Measurements.h"
#include "nvh/engine/NVHWorker.h"

#include <QEventLoop>
#include <QTimer>

namespace {

constexpr int kRecordMs = 5000;

std::vector<Figure> measure(LoopWatch<QCoreApplication>& watch, QString& error) {
    // Events of this loop are not within another event, so that each is timed on its own.
    QEventLoop loop;
    watch.forget();
    NVHWorker worker(AppModeNvh);
    NvhPackageManager& packages = worker.packageManager();
    QString answer;
    QObject::connect(&worker, &NVHWorker::updateFeedbackLabel, &loop,
                     [&answer](const QString& text) { answer = text; });
    QObject::connect(&packages, &NvhPackageManager::updateFeedbackLabel, &loop,
                     [&answer](const QString& text) { answer = text; });
    QObject::connect(&packages, &NvhPackageManager::metadataUploadSuccess, &loop, [&loop] { loop.exit(0); });
    for (auto failure : {&NvhPackageManager::packageUploadFailure, &NvhPackageManager::metadataUploadFailure,
                         &NvhPackageManager::packageManagerFailure})
        QObject::connect(&packages, failure, &loop, [&loop] { loop.exit(1); });
    QTimer::singleShot(0, &worker, &NVHWorker::start);
    QTimer::singleShot(kRecordMs, &worker, [&] {
        watch.excuse();
        if (!worker.isRunning()) {
            loop.exit(1);
            return;
        }
        worker.stop();
        worker.resultsDone();
    });
    worker.setTestType(QStringLiteral("65 MPH"));
    if (loop.exec() != 0) {
        error = QStringLiteral("the run failed: %1").arg(answer.simplified());
        return {};
    }
    Figure figure;
    figure.what = QStringLiteral("longest absence from the loop, engine alone");
    figure.measured = QStringLiteral("start, 5 s, upload");
    figure.value = watch.longestMs();
    figure.unit = QStringLiteral("ms");
    figure.atMost = 16.0;
    return {figure};
}

}  // namespace

Measurement testRunMeasurement(LoopWatch<QCoreApplication>& watch) {
    return {QStringLiteral("run"), [&watch](QString& error) { return measure(watch, error); }};
}
