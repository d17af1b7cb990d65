#pragma once

#include "nvh/Export.h"
#include "nvh/controls/DVControllableWidget.h"

#include <functional>

// A button that a press of the brake pedal (VAPI_brakePedal) works too, for a driver who cannot reach the screen.
//
//     stop->ignoreBrakesWhen([this] { return isBrakeSquealTest(); });
//     stop->enableBrakesControl();
//
// Each press of the pedal touches and releases the button once while the button is enabled; releasing the pedal and a
// pedal that becomes invalid do nothing. UI thread.
class NVH_EXPORT BrakesAndDVControllableButton : public DVControllableWidget<BoolDataValue, ButtonView> {
    Q_OBJECT
public:
    // The value works it too, see DVControllableWidget; null where the vehicle does not have it.
    BrakesAndDVControllableButton(BoolDataValue* value, const QString& label, DisplayView* parent);

    // The pedal counts only while that is false. Must be set before the brakes' control is enabled.
    void ignoreBrakesWhen(std::function<bool()> predicate);
    // The driver's switch: whether the pedal works the button; not at first.
    void enableBrakesControl();
    void disableBrakesControl();

    // The framework's word that the button has been enabled or disabled: the pedal is watched or not.
    void enabled() override;
    void disabled() override;

signals:
    // The pedal has changed while the button is enabled.
    void brakeEvent();

public slots:
    // Touches and releases the button if the pedal is pressed. Blocks as long as the button's action does.
    void operatedByBrakes();

private:
    void watchPedal();

    std::function<bool()> mIgnoreBrakes;
};
