#pragma once

// A switch whose items lie one above the other, position 0 at the bottom.
//
//     auto* duration = new VerticalSlideSwitch(this, {"60 Sec", "5 Sec", "Manual"});   // "Manual" is position 0
//
// It is as wide as its track and has an item of the thumb's height for each label; above the first and below the last
// the slider's thumbMargins() stay blank.

#include <HelixDash/views/SwitchControl.h>

class HELIXDASH_EXPORT VerticalSlideSwitch : public SwitchControl {
    Q_OBJECT

public:
    // Labels as they are seen, from top to bottom.
    VerticalSlideSwitch(DisplayView* parent, const QStringList& labels);
};
