#include <HelixDash/views/ControlBase.h>

ControlBase::ControlBase(DisplayView* parent) : DisplayView(parent) {}

void ControlBase::enabled() {}

void ControlBase::disabled() {}

void ControlBase::enabledFlagChanged(bool on) {
    if (on)
        enabled();
    else
        disabled();
}
