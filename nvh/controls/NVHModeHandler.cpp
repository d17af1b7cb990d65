#include "nvh/controls/NVHModeHandler.h"

#include "nvh/vehicle/VehicleSignals.h"

namespace {

void set(IntDataValue* value, int to) {
    const DataValue::EventLocker locker(value);
    value->setValue(to);
}

std::optional<qint32> current(const IntDataValue* value) {
    const DataValue::StateLocker locker(value);
    return value && value->isValid() ? std::optional<qint32>(value->value()) : std::nullopt;
}

}  // namespace

NVHModeHandler::NVHModeHandler(STWControlsUser& view) : mView(view) {
    dvConnect(VehicleSignals::kWheelOwner.find(), this, &NVHModeHandler::GUI_steeringWheelControlsModeChanged);
    acquire();
}

NVHModeHandler::~NVHModeHandler() {
    yield();
}

void NVHModeHandler::acquire() {
    IntDataValue* mode = VehicleSignals::kWheelOwner.find();
    if (!mode || current(mode) == kOwnMode)
        return;
    set(mode, kOwnMode);
    mSavedScroll = current(VehicleSignals::kWheelScroll.find());
    mView.stwControlsAcquired();
}

void NVHModeHandler::yield() {
    IntDataValue* mode = VehicleSignals::kWheelOwner.find();
    if (current(mode) != kOwnMode)
        return;
    mYielding = true;
    set(mode, kGivenBack);
    // The widgets let go of the wheel before its counter is put back, or that would move the test type.
    mView.stwControlsYielded();
    if (mSavedScroll)
        set(VehicleSignals::kWheelScroll.find(), *mSavedScroll);
    mSavedScroll.reset();
}

void NVHModeHandler::GUI_steeringWheelControlsModeChanged(DataValue* value) {
    const auto* mode = qobject_cast<IntDataValue*>(value);
    if (!mode)
        return;
    bool left = false;
    {
        const DataValue::StateLocker locker(mode);
        const bool isOwn = mode->isValid() && mode->value() == kOwnMode;
        const bool wasOwn = mode->wasPreviousValid() && mode->previousValue() == kOwnMode;
        left = wasOwn && !isOwn;
    }
    if (!left)
        return;
    if (mYielding)
        mYielding = false;
    else
        mView.stwControlsLost();
}
