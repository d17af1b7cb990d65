#include "HelixDash/views/TextBlock.h"

#include <HelixDash/views/ButtonView.h>
#include <HelixDash/views/FontManager.h>
#include <HelixDash/views/SkinColor.h>

#include <QMouseEvent>
#include <QPainter>

namespace {

constexpr int kSmallestLinePx = 19;
constexpr int kSmallestPx = 14;
constexpr int kPadding = 8;
constexpr int kRadius = 12;
constexpr int kCentralRadius = 20;
constexpr int kGapBelow = 4;  // above, too: keeps rows of buttons apart

QColor blended(const QColor& from, const QColor& to, double part) {
    const auto channel = [part](int one, int other) { return qRound(one + (other - one) * part); };
    return QColor(channel(from.red(), to.red()), channel(from.green(), to.green()), channel(from.blue(), to.blue()));
}

}  // namespace

ButtonView::ButtonView(DisplayView* parent) : ButtonView(QString(), parent) {}

ButtonView::ButtonView(const QString& label, DisplayView* parent) : ControlBase(parent), mLabel(label) {
    setFont(FontManager::standardFont(24, QFont::DemiBold));
    resizeSilently(170, 70);
    mPress.setStartValue(0.0);
    mPress.setEndValue(1.0);
    mPress.setDuration(kPressMs);
    mPress.setDirection(QAbstractAnimation::Backward);
    connect(&mPress, &QVariantAnimation::valueChanged, this, qOverload<>(&QWidget::update));
}

void ButtonView::setLabel(const QString& label) {
    mLabel = label;
    update();
}

void ButtonView::setToggle(bool toggle) {
    mToggle = toggle;
    update();
}

void ButtonView::setOn(bool on) {
    mOn = on;
    update();
}

void ButtonView::setButtonColor(int color) {
    mColor = color;
    update();
}

void ButtonView::styleChanged() {
    const QString type = viewStyle().value("ButtonType").toLower();
    mKind = type == "primary" ? Kind::Primary : type == "stop" ? Kind::Stop : Kind::Normal;
    const bool central = mKind != Kind::Normal;
    const QSize usual = central ? QSize(470, 300) : type == "large" ? QSize(240, 80) : size();
    setFont(FontManager::standardFont(viewStyle().number("FontSize", central ? 64 : 24),
                                      viewStyle().weight(central ? QFont::Bold : QFont::DemiBold)));
    resizeSilently(viewStyle().number("Width", usual.width()), viewStyle().number("Height", usual.height()));
}

void ButtonView::touched() {
    if (!acceptsTouch())
        return;
    mTouched = true;
    mFingerOn = true;
    showPress();
}

void ButtonView::released() {
    if (!mTouched)
        return;
    const bool acts = mFingerOn && acceptsTouch();
    touchLost();
    if (!acts)
        return;
    if (mToggle)
        mOn = !mOn;
    emit ControlBase::released(this);  // may delete this button
}

void ButtonView::touchLost() {
    if (mOperating && mOperating != this)
        mOperating->touchLost();
    mOperating.clear();
    mTouched = false;
    showPress();
}

void ButtonView::showPress() {
    const auto direction = mTouched && mFingerOn ? QAbstractAnimation::Forward : QAbstractAnimation::Backward;
    if (direction == mPress.direction())
        return;
    mPress.setDirection(direction);
    if (mPress.state() != QAbstractAnimation::Running)
        mPress.start();
}

void ButtonView::setFingerOn(bool on) {
    if (on == mFingerOn)
        return;
    mFingerOn = on;
    showPress();
}

QRect ButtonView::frame() const {
    return rect().adjusted(kFrameMargin, 0, -kFrameMargin, 0);
}

ButtonView* ButtonView::buttonUnder(const QPoint& place) {
    if (frame().contains(place) || !parentView())
        return this;
    for (DisplayView* sibling : parentView()->childViews()) {
        auto* button = qobject_cast<ButtonView*>(sibling);
        if (button && button->acceptsTouch() &&
            button->frame().contains(button->mapFrom(parentWidget(), mapToParent(place))))
            return button;
    }
    return this;
}

void ButtonView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return;
    mOperating = buttonUnder(event->pos());
    mOperating->touched();
}

void ButtonView::mouseMoveEvent(QMouseEvent* event) {
    if (mOperating)
        mOperating->setFingerOn(mOperating->rect().contains(mOperating->mapFromGlobal(mapToGlobal(event->pos()))));
}

void ButtonView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !mOperating)
        return;
    mouseMoveEvent(event);
    ButtonView* button = mOperating;
    mOperating.clear();
    button->released();
}

QRect ButtonView::labelPlace() const {
    QRect place = frame().adjusted(kPadding, 0, -kPadding, 0);
    for (const DisplayView* child : childViews()) {
        if (child->isVisible() && child->left() > place.left())
            place.setRight(qMin(place.right(), child->left() - kPadding));
    }
    return place;
}

QString ButtonView::look() const {
    const QString kind = mKind == Kind::Primary ? "primary"
                         : mKind == Kind::Stop  ? "stop"
                         : mColor == Saved      ? "saved"
                         : mColor == Recording  ? "recording"
                         : mToggle && mOn       ? "on"
                                                : "normal";
    return "button/" + kind + (QWidget::isEnabled() ? "" : "/faded");
}

void ButtonView::paintEvent(QPaintEvent*) {
    const bool takes = QWidget::isEnabled();
    const double depth = takes ? mPress.currentValue().toDouble() : 0;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor fill = SkinColor::color(look() + "/fill");
    painter.setPen(SkinColor::color(look() + "/edge"));
    painter.setBrush(takes ? blended(fill, SkinColor::color(look() + "/pressed"), depth) : fill);
    const int radius = mKind == Kind::Normal ? kRadius : kCentralRadius;
    painter.drawRoundedRect(QRectF(frame()).adjusted(0.5, 0.5 + kGapBelow, -0.5, -0.5 - kGapBelow), radius, radius);
    painter.setPen(SkinColor::color(look() + "/ink"));
    const QRect place = labelPlace();
    TextBlock::fittedInLine(mLabel, font(), place.size(), kSmallestLinePx, kSmallestPx)
        .paint(&painter, place, Qt::AlignCenter);
}
