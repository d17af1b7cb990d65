#include "bench/measuring/Measurements.h"
#include "bench/measuring/SampleRecording.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

namespace {

constexpr int kSeconds = 60;

// A ramp from 1000 to 9000 1/min, a line each tenth of a second.
bool writeRpmLog(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    for (int ms = 0; ms <= kSeconds * 1000; ms += 100)
        file.write(QByteArray::number(ms) + ", " + QByteArray::number(1000 + ms * 8 / kSeconds) + '\n');
    return file.flush();
}

std::optional<double> secondsOfProgram(const QString& program, const QStringList& arguments) {
    std::vector<double> seconds;
    for (int round = 0; round < 5; ++round) {
        QProcess process;
        seconds.push_back(secondsOf([&] {
            process.start(program, arguments);
            process.waitForFinished();
        }));
        if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
            return std::nullopt;
    }
    return median(seconds);
}

std::vector<Figure> measure(QString& error) {
    const QTemporaryDir directory;
    const QString recording = directory.filePath(QStringLiteral("recording.wav"));
    const QString log = directory.filePath(QStringLiteral("rpm.txt"));
    if (!writeSampleRecording(recording, kSeconds) || !writeRpmLog(log)) {
        error = QStringLiteral("%1 cannot be written").arg(directory.path());
        return {};
    }
    const auto whine = secondsOfProgram(QCoreApplication::applicationDirPath() + QStringLiteral("/whine"),
                                        {recording, log, QStringLiteral("sum"), QStringLiteral("8192")});
    if (!whine) {
        error = QStringLiteral("whine failed");
        return {};
    }
    Figure share;
    share.what = QStringLiteral("whine on 60 s, % of the recording's length");
    share.measured = QStringLiteral("%1 s").arg(*whine, 0, 'f', 3);
    share.value = 100.0 * *whine / kSeconds;
    share.unit = QStringLiteral("%");
    share.atMost = 1.0;
    if (const auto sox =
            secondsOfProgram(QStringLiteral("sox"), {recording, QStringLiteral("-n"), QStringLiteral("spectrogram"),
                                                     QStringLiteral("-o"), QStringLiteral("/dev/null")}))
        share.reference =
            QStringLiteral("sox spectrogram: %1 s, ratio %2").arg(*sox, 0, 'f', 3).arg(*whine / *sox, 0, 'f', 2);
    else
        share.reference = QStringLiteral("sox, which is not installed");
    return {share};
}

}  // namespace

Measurement whineMeasurement() {
    return {QStringLiteral("whine"), measure};
}
