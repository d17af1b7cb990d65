#include "nvh/controls/BrakesAndDVControllableButton.h"

#include "nvh/vehicle/VehicleSignals.h"

#include <HelixDash/services/Logger.h>

#include <utility>

namespace {

BoolDataValue* brakePedal() {
    return VehicleSignals::kBrakePedal.find();
}

}  // namespace

BrakesAndDVControllableButton::BrakesAndDVControllableButton(BoolDataValue* value, const QString& label,
                                                             DisplayView* parent)
    : DVControllableWidget(value, label, parent) {
    // enabled() tells of changes only, and a button is enabled from the start.
    watchPedal();
}

void BrakesAndDVControllableButton::ignoreBrakesWhen(std::function<bool()> predicate) {
    mIgnoreBrakes = std::move(predicate);
}

void BrakesAndDVControllableButton::enableBrakesControl() {
    connect(this, &BrakesAndDVControllableButton::brakeEvent, this, &BrakesAndDVControllableButton::operatedByBrakes,
            Qt::UniqueConnection);
}

void BrakesAndDVControllableButton::disableBrakesControl() {
    disconnect(this, &BrakesAndDVControllableButton::brakeEvent, this,
               &BrakesAndDVControllableButton::operatedByBrakes);
}

void BrakesAndDVControllableButton::watchPedal() {
    dvConnect(brakePedal(), this, &BrakesAndDVControllableButton::brakeEvent);
}

void BrakesAndDVControllableButton::enabled() {
    DVControllableWidget::enabled();
    watchPedal();
}

void BrakesAndDVControllableButton::disabled() {
    DVControllableWidget::disabled();
    if (BoolDataValue* pedal = brakePedal())
        disconnect(pedal, &DataValue::valueChanged, this, &BrakesAndDVControllableButton::brakeEvent);
}

void BrakesAndDVControllableButton::operatedByBrakes() {
    if (mIgnoreBrakes())
        return;
    const BoolDataValue* pedal = brakePedal();
    bool pressed = false;
    {
        const DataValue::ConditionalLocker locker(pedal);
        if (!pedal || !pedal->isValid())
            return;
        pressed = pedal->value();
    }
    Logger(this, "INFO") << "nvh_app : "
                         << "valid";
    if (!isEnabled())
        return;
    Logger(this, "INFO") << "nvh_app : "
                         << "enabled";
    if (!pressed)
        return;
    ButtonView::touched();
    Logger(this, "INFO") << "nvh_app : stop button touched";
    ButtonView::released();
    Logger(this, "INFO") << "nvh_app : stop button released";
}
