#pragma once

#include "nvh/Export.h"

#include <HelixDash/views/PopupView.h>

// Says what the left steering-wheel buttons do in the recorder. Made and forgotten; it closes by itself.
class NVH_EXPORT STWControlsPopup : public PopupView {
    Q_OBJECT
public:
    // Shows at once in that view.
    explicit STWControlsPopup(DisplayView* parent);
};
