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
    BrakesAndDVControllableButton(BoolDataValue* value, const QString& label, DisplayView* parent);

    // Must be set before the brakes' control is enabled.
    void ignoreBrakesWhen(std::function<bool()> predicate);
    void enableBrakesControl();
    void disableBrakesControl();

    void enabled() override;
    void disabled() override;

signals:
    // The pedal has changed while the button is enabled.
    void brakeEvent();

public slots:
    void operatedByBrakes();

private:
    void watchPedal();

    std::function<bool()> mIgnoreBrakes;
};
