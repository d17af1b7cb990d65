// The files of one test run: moved into place, written, named, discarded.

#include "nvh/engine/NVHWorker.h"

#include <HelixDash/services/LocationManager.h>
#include <HelixDash/services/Logger.h>
#include <HelixDash/services/SystemClockWatcher.h>
#include <HelixDash/values/DataValueManager.h>

#include <QFile>

#include <cstdio>

namespace {

// Six significant digits, the shorter of fixed and exponent notation.
QString sixDigits(double value) {
    return QString::number(value, 'g', 6);
}

bool renameOver(const QString& from, const QString& to) {
    return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

// Moves a file over another one. The old one goes only when the new one is complete, also across file systems.
bool replaceFile(const QString& from, const QString& to) {
    if (renameOver(from, to))
        return true;
    const QString part = to + QLatin1String(".part");
    QFile::remove(part);
    if (!QFile::copy(from, part) || !renameOver(part, to)) {
        QFile::remove(part);
        return false;
    }
    return QFile::remove(from);
}

QString conditionOf(const char* valueName) {
    const auto* value = DataValueManager::instance().find<RealDataValue>(QLatin1String(valueName));
    if (!value)
        return QString::fromLatin1(DataValue::kInvalid);
    const DataValue::StateLocker locker(value);
    return sixDigits(value->value());
}

}  // namespace

void NVHWorker::processRecording(RECORDING_TYPE type) {
    Logger(this, "INFO") << "processRecording";
    QString target;
    switch (type) {
        case RecordingAmbient:
            target = cAmbientFileName.value();
            break;
        case RecordingNotes:
            target = cNotesFileName.value();
            break;
        case RecordingTest:
            target = cRecordingFilename.value();
            break;
        default:
            Logger(this, "ERROR") << "processRecording() invalid type";
            return;
    }
    Logger(this, "INFO") << "rename and header fix for " << target;
    const QString capture = cCapturingFileName.value();
    // Without a capture there is nothing to put in the target's place: a clip that was moved already must not cost
    // the test recording when its recorder exits.
    if (!QFile::exists(capture)) {
        Logger(this, "ERROR") << "No capture file" << capture << "- keeping" << target;
        return;
    }
    // A recorder completes its file wherever that is moved, but not a copy of it on another file system.
    if (recorderIsEnding()) {
        if (!renameOver(capture, target))
            mLateTarget = target;
        return;
    }
    fileCapture(target);
}

void NVHWorker::fileCapture(const QString& target) {
    const QString capture = cCapturingFileName.value();
    if (!replaceFile(capture, target))
        Logger(this, "ERROR") << "Cannot move" << capture << "to" << target;
}

void NVHWorker::createDataValuesFile() {
    Logger(this, "INFO") << "Creating DataValues File";
    const Location location = LocationManager::instance()->currentLocation();
    const QStringList parts = {
        QStringLiteral("--- Test Conditions--- \n"),
        QStringLiteral("Outside Temp: %1\n").arg(conditionOf("HVAC_outsideTemp")),
        QStringLiteral("Inside Temp: %1\n").arg(conditionOf("HVAC_insideTemp")),
        QStringLiteral("TPMS FL: %1\n").arg(conditionOf("TPMS_pressureFL")),
        QStringLiteral("TPMS FR: %1\n").arg(conditionOf("TPMS_pressureFR")),
        QStringLiteral("TPMS RL: %1\n").arg(conditionOf("TPMS_pressureRL")),
        QStringLiteral("TPMS RR: %1\n").arg(conditionOf("TPMS_pressureRR")),
        QStringLiteral("Current Latitude: %1\n").arg(sixDigits(location.latitude)),
        QStringLiteral("Current Longitude: %1\n").arg(sixDigits(location.longitude)),
    };
    const QString name = cDataValuesFileName.value();
    FILE* file = std::fopen(name.toLocal8Bit().constData(), "w");
    if (!file) {
        Logger(this, "ERROR") << "Unable to Create" << name;
        return;
    }
    // A full disk shows when the text leaves its buffer.
    if (std::fprintf(file, "%s", parts.join(QString()).toLocal8Bit().constData()) < 0 || std::fflush(file) != 0)
        logWithErrorNum(QStringLiteral("Unable to Write to File %1").arg(name));
    std::fclose(file);
}

void NVHWorker::renameFiles(bool pass) {
    const QString format = QStringLiteral("/tmp/%1-%2-%3_%4-CAR_%5-%6.tgz");
    // Two runs in one second are two packages.
    QString packageName;
    qint64 seconds = SystemClockWatcher::instance()->currentTimeUtcSecs();
    do {
        packageName =
            format.arg(readVin(), getTrim(), QLatin1String(NVHAppVersion),
                       pass ? QStringLiteral("pass") : QStringLiteral("fail"), getTag(), QString::number(seconds++));
    } while (QFile::exists(packageName));
    Logger(this, "INFO") << "package name: " << packageName;

    mFilesToPackage.clear();
    for (const ConfigStringValue& setting : allFilenames) {
        const QString name = setting.value();
        if (QFile::exists(name))
            mFilesToPackage.append(name);
        else
            Logger(this, "INFO") << "Missing" << name;
    }
    mPackageManager.startPackageManagerProcess(packageName, mFilesToPackage);
}

void NVHWorker::deleteRecordedFiles() {
    // A recorder that is still ending would put its capture in place after this, a microphone check its report.
    mCaptureDiscarded = recorderIsEnding();
    releaseMicCheck();
    removeRecordedFiles();
    resumeWhatWaited();
}

void NVHWorker::removeRecordedFiles() {
    for (const ConfigStringValue& setting : allFilenames) {
        const QString name = setting.value();
        if (QFile::exists(name) && !mPackageManager.isPackaging(name) && !QFile::remove(name))
            Logger(this, "ERROR") << "Unable to Delete " << name;
    }
}
