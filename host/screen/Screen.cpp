#include "host/screen/Screen.h"

#include <HelixDash/views/SkinColor.h>

#include <QPainter>

namespace {

// A panel with a line to what lies below.
class TitleArea : public DisplayView {
public:
    using DisplayView::DisplayView;

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.fillRect(rect(), SkinColor::color(QStringLiteral("panel")));
        painter.fillRect(0, height() - 1, width(), 1, SkinColor::color(QStringLiteral("line")));
    }
};

}  // namespace

Screen::Screen() : mTitleArea(new TitleArea(this)), mApplicationArea(new DisplayView(this)) {
    setViewName(QStringLiteral("screen"));
    setFixedSize(kWidth, kHeight);
    setBackgroundColor(QStringLiteral("screen"));

    mTitleArea->setViewName(QStringLiteral("titleArea"));
    mTitleArea->resize(kWidth, kTitleHeight);
    mApplicationArea->setViewName(QStringLiteral("applicationArea"));
    mApplicationArea->resize(kWidth, kHeight - kTitleHeight);
    mApplicationArea->move(0, kTitleHeight);
}
