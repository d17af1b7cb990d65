#include "nvh/controls/VertSlideSwitch.h"

VertSlideSwitch::VertSlideSwitch(DisplayView* parent, const QStringList& labels) : VerticalSlideSwitch(parent, labels) {
    Slider* const slides = slider();
    slides->setTrackImage(DisplayImage(QStringLiteral("control/sliders/track.png")));
    slides->setThumbImage(DisplayImage(QStringLiteral("control/buttons/button_grey_50.png")));
    const QMargins track = slides->trackMargins();
    const QMargins thumb = slides->thumbMargins();
    slides->setTrackAdjustment((slides->thumbHeight() - track.top() - track.bottom()) / 2);
    resize(slides->trackWidth() + thumb.left() + thumb.right(),
           slides->thumbHeight() * int(labels.size()) + 2 * thumb.bottom());
}
