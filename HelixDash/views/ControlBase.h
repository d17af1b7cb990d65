#pragma once

// A view that a finger operates: a button, a switch, a picker.
//
//     connect(button, &ControlBase::released, this, &MyView::startReleased);
//
// A control that is hidden or disabled, itself or by a parent, takes no touch; one that becomes so in the middle of a
// touch forgets it.
//
// UI thread only.

#include <HelixDash/views/DisplayView.h>

class HELIXDASH_EXPORT ControlBase : public DisplayView {
    Q_OBJECT

public:
    explicit ControlBase(DisplayView* parent = nullptr);

    // Told once per change of the own enabled flag, after it. Overriders call the base first.
    virtual void enabled();
    virtual void disabled();

signals:
    // The finger has been lifted from the control and the control has acted. The receiver may delete the control.
    void released(ControlBase* control);

protected:
    void enabledFlagChanged(bool on) override;
};
