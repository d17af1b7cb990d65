#pragma once

#include "nvh/controls/DVConnection.h"
#include "nvh/controls/DVControllable.h"
#include "nvh/controls/DVSliderChange.h"

#include <HelixDash/values/TypedDataValues.h>
#include <HelixDash/views/ButtonView.h>

#include <type_traits>
#include <utility>

// A button or switch that a vehicle data value works as a finger does.
//
//     auto* start = new DVControllableWidget<BoolDataValue, ButtonView>(middleButton, "Start", this);
//     start->enableDVControl();
//
// The value acts only while the widget is shown, enabled and its control by the value is switched on. Whether it is
// shown and enabled is its own state at first, and what shown(), hidden(), enabled() and disabled() say afterwards.
//
// A button is pressed by a value that turns true and released, which fires its action, by one that turns false or
// invalid. Only what the value has pressed is released by it: a value that was true before the button listened to it,
// that turns from invalid to false, or that changes under a finger fires nothing. A switch moves as
// handleDVChangeSliders() says.
//
// UI thread.
template <typename DV, typename Widget>
class DVControllableWidget : public Widget, public DVControllable {
public:
    // The value is not owned, and null where the vehicle does not have it; the rest is what the widget wants.
    template <typename... Arguments>
    explicit DVControllableWidget(DV* value, Arguments&&... arguments)
        : Widget(std::forward<Arguments>(arguments)...),
          mConnection(value, *this),
          mShown(Widget::isVisible()),
          mEnabled(Widget::isEnabled()) {}

    // The framework's word that the widget has been shown: the value counts if the rest is given.
    void shown() override {
        Widget::shown();
        mShown = true;
        updateConnection();
    }

    // That it has been hidden: the value counts no longer.
    void hidden() override {
        Widget::hidden();
        mShown = false;
        disconnectValue();
    }

    // That it has been enabled: as shown().
    void enabled() override {
        Widget::enabled();
        mEnabled = true;
        updateConnection();
    }

    // That it has been disabled: as hidden().
    void disabled() override {
        Widget::disabled();
        mEnabled = false;
        disconnectValue();
    }

    // Switches the control on: called by the widget's owner when it has the steering wheel. Twice is once.
    void enableDVControl() override {
        mControlEnabled = true;
        updateConnection();
    }

    // Switches it off. A press by the value that is under way fires nothing any more.
    void disableDVControl() override {
        mControlEnabled = false;
        disconnectValue();
    }

    // The value has changed while it counts. Blocks as long as the button's action does.
    void handleDVChange() override {
        auto& value = static_cast<DV&>(*mConnection.value());
        if constexpr (std::is_base_of_v<ButtonView, Widget>)
            press(isTrue(value));
        else
            handleDVChangeSliders(*this, value);
    }

private:
    void updateConnection() {
        if (!mControlEnabled || !mShown || !mEnabled) {
            disconnectValue();
        } else if (!mConnected) {
            mConnection.connectValue();
            mConnected = true;
        }
    }

    void disconnectValue() {
        if (!mConnected)
            return;
        mConnection.disconnectValue();
        mConnected = false;
        mPressed = false;
    }

    // The lock is held for the read alone: what a button does may wait for threads that read values.
    static bool isTrue(const BoolDataValue& value) {
        const DataValue::ConditionalLocker locker(&value);
        return value.isValid() && value.value();
    }

    void press(bool down) {
        const bool releases = std::exchange(mPressed, down) && !down;
        if (down)
            ButtonView::touched();
        else if (releases)
            ButtonView::released();  // may delete this button
    }

    DVConnection mConnection;
    bool mControlEnabled = false;
    bool mShown;
    bool mEnabled;
    bool mConnected = false;
    bool mPressed = false;  // by the value
};
