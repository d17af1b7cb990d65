#pragma once

#include "nvh/Export.h"

#include <HelixDash/views/VerticalSlideSwitch.h>

// A vertical switch with a grey thumb, laid out by the thumb's picture: one thumb high for each label.
class NVH_EXPORT VertSlideSwitch : public VerticalSlideSwitch {
    Q_OBJECT
public:
    // Labels from top to bottom; the last one is position 0.
    VertSlideSwitch(DisplayView* parent, const QStringList& labels);
};
