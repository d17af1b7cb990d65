#include <HelixDash/views/VerticalSlideSwitch.h>

#include <algorithm>

namespace {

QStringList reversed(QStringList labels) {
    std::reverse(labels.begin(), labels.end());
    return labels;
}

}  // namespace

VerticalSlideSwitch::VerticalSlideSwitch(DisplayView* parent, const QStringList& labels)
    : SwitchControl(parent, Qt::Vertical, reversed(labels)) {
    const QMargins room = slider()->thumbMargins();
    resizeSilently(slider()->trackWidth() + room.left() + room.right(),
                   slider()->thumbHeight() * int(labels.size()) + room.top() + room.bottom());
}
