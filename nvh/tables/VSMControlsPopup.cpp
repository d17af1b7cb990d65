#include "nvh/tables/VSMControlsPopup.h"

#include <HelixDash/views/LabelView.h>

namespace {

constexpr int kCornerRadius = 20;
constexpr int kMargin = 5;
constexpr int kTextMargin = 30;
constexpr int kWidth = 500;
constexpr int kHeight = 220;

}  // namespace

VSMControlsPopup::VSMControlsPopup(DisplayView* parent) : PopupView(parent, kCornerRadius, kMargin) {
    resize(kWidth, kHeight);
    auto* label = new LabelView(
        tr("HVAC and Audio will be automatically turned off during the recording and restored back later."), this);
    label->setStyle("SteeringWheelPanel/MirrorInstructionsLabel");
    label->resize(kWidth - 2 * kTextMargin, kHeight - 2 * kTextMargin);
    label->move(kTextMargin, kTextMargin);
}
