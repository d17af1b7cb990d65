#include "HelixDash/views/ChoiceRow.h"

#include "HelixDash/views/TextBlock.h"

#include <HelixDash/views/FontManager.h>
#include <HelixDash/views/SkinColor.h>

#include <QMouseEvent>
#include <QPainter>

namespace {

constexpr int kPx = 19;
constexpr int kSmallestPx = 14;
constexpr int kPadding = 18;
constexpr int kInset = 4;
constexpr int kRadius = 8;

}  // namespace

ChoiceRow::ChoiceRow(DisplayView* parent, const QString& text, bool chosen)
    : ControlBase(parent), mText(text), mChosen(chosen) {}

void ChoiceRow::touchLost() {
    mTouched = false;
    update();
}

void ChoiceRow::mousePressEvent(QMouseEvent* event) {
    mTouched = event->button() == Qt::LeftButton && acceptsTouch();
    update();
}

void ChoiceRow::mouseReleaseEvent(QMouseEvent* event) {
    const bool acts = mTouched && rect().contains(event->pos());
    touchLost();
    if (acts)
        emit released(this);
}

void ChoiceRow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (mTouched || mChosen) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(SkinColor::color(mTouched ? "track" : "screen"));
        painter.drawRoundedRect(rect().adjusted(kInset, kInset, -kInset, -kInset), kRadius, kRadius);
    }
    painter.setPen(SkinColor::color("black"));
    const QRect place = rect().adjusted(kPadding, 0, -kPadding, 0);
    TextBlock::fitted(mText, FontManager::standardFont(kPx, mChosen ? QFont::DemiBold : QFont::Medium), place.size(),
                      kSmallestPx)
        .paint(&painter, place, Qt::AlignLeft | Qt::AlignVCenter);
}
