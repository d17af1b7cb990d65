#include <HelixDash/views/FontManager.h>
#include <HelixDash/views/SlideSwitch.h>

#include <QFontMetrics>

namespace {

constexpr int kSmallestItemWidth = 60;
constexpr int kItemPadding = 22;

}  // namespace

SlideSwitch::SlideSwitch(DisplayView* parent, const QStringList& items) : SwitchControl(parent, Qt::Horizontal, items) {
    setSwitchType(Compact);
}

int SlideSwitch::compactWidth() const {
    const QFontMetrics metrics(FontManager::standardFont(19, QFont::DemiBold));
    int widest = kSmallestItemWidth;
    for (const QString& item : items())
        widest = qMax(widest, metrics.horizontalAdvance(item) + kItemPadding);
    return widest * qMax(1, int(items().size()));
}

void SlideSwitch::setSwitchType(int type) {
    mType = type;
    if (type == Row)
        resizeSilently(410, 70);
    else
        resizeSilently(compactWidth(), 60);
}
