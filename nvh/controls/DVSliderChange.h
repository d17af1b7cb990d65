#pragma once

#include "nvh/Export.h"

class IntDataValue;
class SwitchControl;

// Moves the switch by one position for each step of a counter: towards position 0 when the counter rises, kept between
// the first and the last label, without a signal. Does nothing unless the counter is valid and was so before its last
// change. UI thread.
NVH_EXPORT void handleDVChangeSliders(SwitchControl& widget, const IntDataValue& value);
