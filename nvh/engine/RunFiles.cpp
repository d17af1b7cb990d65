#include "nvh/engine/RunFiles.h"

#include "nvh/engine/Settings.h"
#include "nvh/engine/WavHeader.h"
#include "nvh/files/OwnFile.h"
#include "nvh/files/SystemWords.h"
#include "nvh/vehicle/VehicleSignals.h"

#include <HelixDash/services/LocationManager.h>
#include <HelixDash/services/SystemClockWatcher.h>

#include <QFile>
#include <QFileInfo>

#include <cerrno>

namespace {

// Six significant digits, the shorter of fixed and exponent notation.
QString sixDigits(double value) {
    return QString::number(value, 'g', 6);
}

QString conditionOf(const VehicleSignals::Signal<RealDataValue>& signal) {
    const RealDataValue* value = signal.find();
    if (!value)
        return QString::fromLatin1(DataValue::kInvalid);
    const DataValue::StateLocker locker(value);
    return sixDigits(value->value());
}

QString testNoteFile() {
    return cRecordingFilename.value() + QLatin1String(".test");
}

const QString kClunk = QStringLiteral("clunk");
constexpr qint64 kLongestNote = 1024;

}  // namespace

QStringList RunFiles::keptFiles() {
    QStringList files{cCapturingFileName.value()};
    for (const ConfigStringValue& setting : allFilenames)
        files.append(setting.value());
    // No run writes these two, so they are nobody's to keep.
    files.removeAll(cConfigFileNameDest.value());
    files.removeAll(cWheelSpeedFileName.value());
    return files;
}

QString RunFiles::testConditions() {
    namespace Signals = VehicleSignals;
    const Location location = LocationManager::instance()->currentLocation();
    const QStringList parts = {
        QStringLiteral("--- Test Conditions--- \n"),
        QStringLiteral("Outside Temp: %1\n").arg(conditionOf(Signals::kOutsideTemp)),
        QStringLiteral("Inside Temp: %1\n").arg(conditionOf(Signals::kInsideTemp)),
        QStringLiteral("TPMS FL: %1\n").arg(conditionOf(Signals::kTyreFrontLeft)),
        QStringLiteral("TPMS FR: %1\n").arg(conditionOf(Signals::kTyreFrontRight)),
        QStringLiteral("TPMS RL: %1\n").arg(conditionOf(Signals::kTyreRearLeft)),
        QStringLiteral("TPMS RR: %1\n").arg(conditionOf(Signals::kTyreRearRight)),
        QStringLiteral("Current Latitude: %1\n").arg(sixDigits(location.latitude)),
        QStringLiteral("Current Longitude: %1\n").arg(sixDigits(location.longitude)),
    };
    return parts.join(QString());
}

QString RunFiles::freePackageName(const QString& vin, const QString& trim, bool pass, const QString& tag) {
    const QString format = QStringLiteral("/tmp/%1-%2-%3_%4-CAR_%5-%6.tgz");
    QString name;
    qint64 seconds = SystemClockWatcher::instance()->currentTimeUtcSecs();
    do {
        name = format.arg(vin, trim, QLatin1String(NVHAppVersion),
                          pass ? QStringLiteral("pass") : QStringLiteral("fail"), tag, QString::number(seconds++));
    } while (QFile::exists(name) || QFile::exists(name + QLatin1String(".part")));
    return name;
}

std::optional<RunFiles::SetAside> RunFiles::setAsideUnfiledCapture(const QObject* sender) {
    const QString capture = cCapturingFileName.value();
    const auto found = FileIdentity::of(capture);
    if (!found)
        return std::nullopt;
    if (found->size <= WavHeader::kPlainSize && QFile::remove(capture))
        return std::nullopt;
    const QString folder = makeRescueFolder(capture);
    SetAside result{folder + QLatin1Char('/') + QFileInfo(capture).fileName(), QString()};
    if (folder.isEmpty() || !repairUnfinishedWav(capture, sender) || !moveOwnFile(capture, result.file).isEmpty())
        result.error = QStringLiteral("%1 cannot be kept beside its place: %2").arg(capture, systemWord(errno));
    return result;
}

QString RunFiles::tagOf(const TestNote& test) {
    const QString tag = testTypesVsTags[test.testType];
    return test.clunk ? QStringLiteral("%1_CLUNK").arg(tag) : tag;
}

void RunFiles::writeTestNote(const TestNote& note) {
    const QString text = note.testType + QLatin1Char('\n') + (note.clunk ? kClunk + QLatin1Char('\n') : QString());
    writeOwnFile(testNoteFile(), text.toUtf8());
}

std::optional<RunFiles::TestNote> RunFiles::readTestNote() {
    QFile file(testNoteFile());
    if (!isOwnPlainFile(file.fileName()) || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QStringList lines = QString::fromUtf8(file.read(kLongestNote)).split(QLatin1Char('\n'));
    return TestNote{lines.first(), lines.value(1) == kClunk};
}

void RunFiles::dropTestNoteWithoutRecording() {
    if (!QFile::exists(cRecordingFilename.value()) && isOwnPlainFile(testNoteFile()))
        QFile::remove(testNoteFile());
}
