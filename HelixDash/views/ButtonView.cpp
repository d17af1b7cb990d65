#include "HelixDash/views/TextBlock.h"

#include <HelixDash/views/ButtonView.h>
#include <HelixDash/views/FontManager.h>
#include <HelixDash/views/SkinColor.h>

#include <QMouseEvent>
#include <QPainter>

namespace {

constexpr int kSmallestPx = 14;
constexpr int kPadding = 8;
constexpr int kRadius = 12;

}  // namespace

ButtonView::ButtonView(DisplayView* parent) : ButtonView(QString(), parent) {}

ButtonView::ButtonView(const QString& label, DisplayView* parent) : ControlBase(parent), mLabel(label) {
    setFont(FontManager::standardFont(24, QFont::DemiBold));
    resizeSilently(170, 70);
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
    update();
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
    mTouched = false;
    update();
}

void ButtonView::setFingerOn(bool on) {
    if (on == mFingerOn)
        return;
    mFingerOn = on;
    update();
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
        mOperating->setFingerOn(mOperating->rect().contains(mOperating->mapFromGlobal(event->globalPos())));
}

void ButtonView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !mOperating)
        return;
    mouseMoveEvent(event);
    ButtonView* button = mOperating;
    mOperating.clear();
    button->released();
}

QColor ButtonView::ink() const {
    return SkinColor::color(QWidget::isEnabled() ? "black" : "faded");
}

QRect ButtonView::labelPlace() const {
    QRect place = frame().adjusted(kPadding, 0, -kPadding, 0);
    for (const DisplayView* child : childViews()) {
        if (child->isVisible() && child->left() > place.left())
            place.setRight(qMin(place.right(), child->left() - kPadding));
    }
    return place;
}

void ButtonView::paintFrame(QPainter* painter) const {
    painter->setPen(SkinColor::color("edge"));
    painter->setBrush(SkinColor::color("panel"));
    painter->drawRoundedRect(QRectF(frame()).adjusted(0.5, 0.5, -0.5, -0.5), kRadius, kRadius);
}

void ButtonView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintFrame(&painter);
    painter.setPen(ink());
    const QRect place = labelPlace();
    TextBlock::fitted(mLabel, font(), place.size(), kSmallestPx).paint(&painter, place, Qt::AlignCenter);
}
