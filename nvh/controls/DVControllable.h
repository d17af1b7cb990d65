#pragma once

// A widget that can also be worked by a vehicle data value, whatever its kind.
class DVControllable {
public:
    // The widget goes as whatever else it is.
    virtual ~DVControllable() = default;

    // Switches the control by the value on and off; off at first.
    virtual void enableDVControl() = 0;
    virtual void disableDVControl() = 0;

    // The value has changed.
    virtual void handleDVChange() = 0;
};
