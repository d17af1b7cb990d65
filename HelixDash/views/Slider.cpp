#include "HelixDash/views/TextBlock.h"

#include <HelixDash/views/FontManager.h>
#include <HelixDash/views/SkinColor.h>
#include <HelixDash/views/Slider.h>

#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QtMath>

namespace {

constexpr int kDragStart = 8;
constexpr int kImageCorner = 16;
constexpr int kTouchCorner = 9;
constexpr int kItemPx = 19;
constexpr int kSmallestItemLinePx = 16;
constexpr int kSmallestItemPx = 14;
constexpr int kItemPadding = 4;

}  // namespace

Slider::Slider(DisplayView* parent, Qt::Orientation orientation)
    : ControlBase(parent),
      mOrientation(orientation),
      mTrackImage(QStringLiteral("control/sliders/track.png")),
      mThumbImage(QStringLiteral("control/buttons/button_grey_50.png")) {
    mSlide.setDuration(kSlideMs);
    mSlide.setEasingCurve(QEasingCurve::OutCubic);
    connect(&mSlide, &QVariantAnimation::valueChanged, this, [this](const QVariant& now) {
        mThumb = now.toDouble();
        update();
    });
}

void Slider::setItems(const QStringList& items) {
    mItems = items;
    setRange(0, items.isEmpty() ? 1 : items.size() - 1);
}

void Slider::setRange(double minimum, double maximum) {
    mMinimum = minimum;
    mMaximum = qMax(minimum, maximum);
    setValue(mValue, false, false, false);
}

double Slider::settled(double value) const {
    const double inside = qBound(mMinimum, value, mMaximum);
    return mItems.isEmpty() ? inside : qRound(inside);
}

void Slider::setValue(double value, bool animate, bool notify, bool force) {
    if (qIsNaN(value))
        return;
    const double before = mValue;
    mTouch = Touch::None;
    mValue = settled(value);
    slideThumbTo(mValue, animate);
    if (notify && (force || mValue != before))
        emit valueChanged(mValue);  // may delete this slider
}

void Slider::slideThumbTo(double value, bool animate) {
    mSlide.stop();
    if (animate && QWidget::isVisible() && mThumb != value) {
        mSlide.setStartValue(mThumb);
        mSlide.setEndValue(value);
        mSlide.start();
    } else {
        mThumb = value;
    }
    update();
}

void Slider::setTrackImage(const DisplayImage& image) {
    mTrackImage = image;
    update();
}

void Slider::setThumbImage(const DisplayImage& image) {
    mThumbImage = image;
    update();
}

QMargins Slider::thumbMargins() const {
    return isVertical() ? QMargins(0, 24, 0, 24) : QMargins(0, 4, 0, 4);
}

int Slider::trackAdjustment() const {
    return mTrackAdjustment >= 0 ? mTrackAdjustment : qRound(itemLength() / 2);
}

void Slider::setTrackAdjustment(int px) {
    mTrackAdjustment = qMax(0, px);
    update();
}

QRect Slider::travel() const {
    return rect().marginsRemoved(thumbMargins());
}

double Slider::itemLength() const {
    const int length = isVertical() ? travel().height() : travel().width();
    const int usual = isVertical() ? thumbHeight() : qMin(thumbWidth(), length / 4);
    return mItems.isEmpty() ? usual : double(length) / mItems.size();
}

QRect Slider::thumbPlace(double value) const {
    const QRect way = travel();
    const double length = itemLength();
    const double span = mMaximum > mMinimum ? (value - mMinimum) / (mMaximum - mMinimum) : 0;
    if (isVertical())
        return QRect(way.left(), qRound(way.top() + (1 - span) * (way.height() - length)), way.width(), qRound(length));
    return QRect(qRound(way.left() + span * (way.width() - length)), way.top(), qRound(length), way.height());
}

double Slider::valueAt(const QPoint& place) const {
    const QPoint low = thumbPlace(mMinimum).center();
    const QPoint high = thumbPlace(mMaximum).center();
    const int length = along(high) - along(low);
    return length == 0 ? mMinimum : mMinimum + (mMaximum - mMinimum) * (along(place) - along(low)) / length;
}

int Slider::beside(const QPoint& place) const {
    const int across = isVertical() ? place.x() : place.y();
    const int size = isVertical() ? width() : height();
    return across < 0 ? -across : qMax(0, across - size + 1);
}

void Slider::touchLost() {
    if (mTouch == Touch::None)
        return;
    mTouch = Touch::None;
    slideThumbTo(mValue, false);
}

void Slider::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !acceptsTouch())
        return;
    mTouchedAt = mFinger = event->pos();
    mTouch = thumbPlace(mThumb).contains(mTouchedAt) ? Touch::OnThumb : Touch::OnTrack;
    mGrip = valueAt(mTouchedAt) - mThumb;
    update();
}

void Slider::follow(const QPoint& place) {
    mFinger = place;
    if (mTouch == Touch::OnThumb && qAbs(along(place) - along(mTouchedAt)) >= kDragStart) {
        mTouch = Touch::Dragging;
        mSlide.stop();
    }
    if (mTouch == Touch::Dragging)
        mThumb = qBound(mMinimum, valueAt(place) - mGrip, mMaximum);
    update();
}

void Slider::mouseMoveEvent(QMouseEvent* event) {
    if (mTouch != Touch::None)
        follow(event->pos());
}

void Slider::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || mTouch == Touch::None)
        return;
    follow(event->pos());
    const bool dragged = mTouch == Touch::Dragging && beside(mFinger) < kGiveUp;
    const bool tapped = mTouch == Touch::OnTrack && rect().contains(mFinger);
    const double chosen = dragged ? mThumb : tapped ? valueAt(mFinger) : mValue;
    QPointer<Slider> self = this;
    setValue(chosen, true, true, false);
    if (self && (dragged || tapped))
        emit released(this);
}

QRect Slider::trackPlace() const {
    const int reach = trackAdjustment();
    const QPoint low = thumbPlace(mMinimum).center();
    const QPoint high = thumbPlace(mMaximum).center();
    if (isVertical())
        return QRect(QPoint(travel().left(), high.y() - reach + 1), QPoint(travel().right(), low.y() + reach));
    return QRect(QPoint(low.x() - reach + 1, travel().top()), QPoint(high.x() + reach, travel().bottom()));
}

void Slider::paintTouch(QPainter* painter) const {
    if (mTouch == Touch::None)
        return;
    const bool onTrack = mTouch == Touch::OnTrack;
    if (onTrack && !rect().contains(mFinger))
        return;
    const double value = onTrack ? settled(valueAt(mFinger)) : mThumb;
    painter->setPen(Qt::NoPen);
    painter->setBrush(SkinColor::color("touch"));
    painter->drawRoundedRect(thumbPlace(value).adjusted(4, 3, -4, -3), kTouchCorner, kTouchCorner);
}

void Slider::paintItem(QPainter* painter, int item) const {
    const bool chosen = qRound(mThumb) == item;
    const bool takes = QWidget::isEnabled();
    painter->setPen(SkinColor::color(takes ? "black" : "faded"));
    const QRect place = thumbPlace(item).adjusted(kItemPadding, 0, -kItemPadding, 0);
    TextBlock::fittedInLine(mItems[item], FontManager::standardFont(kItemPx, chosen ? QFont::DemiBold : QFont::Medium),
                            place.size(), kSmallestItemLinePx, kSmallestItemPx)
        .paint(painter, place, Qt::AlignCenter);
}

void Slider::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setOpacity(QWidget::isEnabled() ? 1 : 0.5);
    mTrackImage.paint(&painter, trackPlace(), kImageCorner);
    mThumbImage.paint(&painter, thumbPlace(mThumb), kImageCorner);
    painter.setOpacity(1);
    painter.setRenderHint(QPainter::Antialiasing);
    paintTouch(&painter);
    for (int item = 0; item < mItems.size(); ++item)
        paintItem(&painter, item);
}
