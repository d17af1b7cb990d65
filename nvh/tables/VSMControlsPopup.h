#pragma once

#include "nvh/Export.h"

#include <HelixDash/views/PopupView.h>

// Says what automatic control of audio and climate does. Made and forgotten; it closes by itself.
class NVH_EXPORT VSMControlsPopup : public PopupView {
    Q_OBJECT
public:
    // Shows at once in that view.
    explicit VSMControlsPopup(DisplayView* parent);
};
