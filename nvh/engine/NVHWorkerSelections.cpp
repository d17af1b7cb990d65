// The user's selections and what they mean in words, tags and seconds.

#include "nvh/capture/Truncate.h"
#include "nvh/engine/NVHWorker.h"
#include "nvh/vehicle/VehicleSignals.h"

#include <HelixDash/services/SysUtils.h>
#include <HelixDash/values/DataValueManager.h>

#include <iterator>

void NVHWorker::setTestType(QString testType) {
    mSelected.test.testType = testType;
    mStore.choose();
}

void NVHWorker::setSliderDurationPosition(int pos) {
    mSelected.durationPosition = pos;
}

void NVHWorker::setClunkButtonState(bool state) {
    mSelected.test.clunk = state;
}

void NVHWorker::setMicChannel(int channel) {
    mSelected.micChannel = channel;
}

int NVHWorker::getMicChannel() {
    return mSelected.micChannel;
}

void NVHWorker::setFreqResolution(int selection) {
    mSelected.freqResolution = selection;
}

int NVHWorker::getFreqResolution() {
    return mSelected.freqResolution;
}

bool NVHWorker::isBrakeSquealTest() const {
    return mSelected.test.testType == QLatin1String("Brake Squeal");
}

int NVHWorker::getDuration() {
    static constexpr int seconds[] = {0, 5, 10, 15, 20, 30, 45, 60};
    const bool known = mSelected.durationPosition >= 0 && mSelected.durationPosition < int(std::size(seconds));
    return known ? seconds[mSelected.durationPosition] : -1;
}

QString NVHWorker::parseFftSize() const {
    switch (mSelected.freqResolution) {
        case 0:
            return QStringLiteral("2048");
        case 1:
            return QStringLiteral("4096");
        case 3:
            return QStringLiteral("16384");
        default:
            return QStringLiteral("8192");
    }
}

QString NVHWorker::parseMicChannel() const {
    switch (mSelected.micChannel) {
        case 0:
            return QStringLiteral("sum");
        case 2:
            return QStringLiteral("right");
        default:
            return QStringLiteral("left");
    }
}

QString NVHWorker::getTag() {
    return RunFiles::tagOf(mSelected.test);
}

QString NVHWorker::getTrim() {
    const IntDataValue* trim = VehicleSignals::kTrim.find();
    const DataValue::StateLocker locker(trim);
    QString name =
        trim && trim->isValid() ? NameForEnum(TrimNameMap, trim->value()) : QString::fromLatin1(DataValue::kInvalid);
    return name.remove(QLatin1Char('+'));
}

QString NVHWorker::readVin() const {
    return SysUtils::vin();
}

int NVHWorker::getMotorRPM() {
    return truncated(VehicleSignals::kMotorRpm.valueOr(0.0));
}
