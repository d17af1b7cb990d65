#include "nvh/controls/STWControlsPopup.h"

#include <HelixDash/views/ImageView.h>
#include <HelixDash/views/LabelView.h>

namespace {

constexpr int kCornerRadius = 20;
constexpr int kMargin = 5;
constexpr int kWidth = 500;
constexpr int kHeight = 600;
constexpr int kLabelHeight = 100;
constexpr int kPictureTop = 70;

}  // namespace

STWControlsPopup::STWControlsPopup(DisplayView* parent) : PopupView(parent, kCornerRadius, kMargin) {
    auto* content = new DisplayView(this);
    content->resize(kWidth, kHeight);
    auto* label = new LabelView(tr("Use the left steering wheel buttons to\noperate the App."), content);
    label->setStyle("SteeringWheelPanel/MirrorInstructionsLabel");
    label->resize(kWidth, kLabelHeight);
    auto* picture = new ImageView(DisplayImage(QStringLiteral("NVH/nvh_stw.png")), 1.0, content);
    picture->move((kWidth - picture->width()) / 2, label->top() + kPictureTop);
    sizeToContents();
}
