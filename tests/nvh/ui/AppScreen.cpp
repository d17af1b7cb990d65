#include "tests/nvh/ui/AppScreen.h"

#include "nvh/plugin/LoadPlugin.h"

#include <HelixDash/views/ButtonView.h>
#include <HelixDash/views/LabelView.h>
#include <HelixDash/views/SlideSwitch.h>

#include <QTest>

AppScreen::AppScreen(int mode, const QString& directory) : mTitleArea(new DisplayView(&mScreen)) {
    mScreen.resize(1300, 1000);
    mTitleArea->resize(1300, 60);
    auto* area = new DisplayView(&mScreen);
    area->resize(1300, 940);
    area->move(0, 60);
    mInfo = {QStringLiteral("NVH"), directory, mTitleArea};
    mWrapper = qobject_cast<NVHWrapper*>(LoadPlugin(&mInfo, area));
    mScreen.show(true);
    if (mode != AppModeNvh)
        choose(AppMode(mode));
}

QString AppScreen::text(const char* name) const {
    if (const auto* button = view<ButtonView>(name))
        return button->label();
    if (const auto* items = view<SwitchControl>(name))
        return items->items().join(QLatin1Char(','));
    return view<LabelView>(name)->text();
}

QString AppScreen::status() const {
    const auto* label = view<LabelView>("mStatusLabel");
    return QStringLiteral("%1 %2 %3").arg(label->text(), label->skinColor()).arg(label->left());
}

bool AppScreen::takesTouch(const char* name) const {
    return view(name)->acceptsTouch();
}

void AppScreen::choose(AppMode mode) {
    view<SlideSwitch>("mModeSwitch")->slider()->setValue(mode, false, true, true);
}

void AppScreen::touch(const char* name) {
    QTest::mouseClick(view(name), Qt::LeftButton);
}

void AppScreen::setSwitch(const char* name, const QString& item) {
    auto* items = view<SwitchControl>(name);
    items->slider()->setValue(items->items().indexOf(item), false, true, false);
}
