#include "HelixDash/views/TouchTrap.h"

#include <HelixDash/views/PopupView.h>
#include <HelixDash/views/SkinColor.h>

#include <QChildEvent>
#include <QPainter>

namespace {

constexpr int kShadow = 6;  // drawn inside the view's own rectangle

}  // namespace

PopupView::PopupView(DisplayView* parent, int cornerRadius, int margin)
    : DisplayView(parent), mCornerRadius(qMax(0, cornerRadius)), mMargin(qMax(0, margin)) {
    auto* trap = new TouchTrap(this, TouchTrap::OnOwner::Elsewhere);
    connect(trap, &TouchTrap::touchedElsewhere, this, &PopupView::dismiss);
    mTimer.setSingleShot(true);
    mTimer.setTimerType(Qt::PreciseTimer);
    connect(&mTimer, &QTimer::timeout, this, &PopupView::dismiss);
    mTimer.start(kShownMs);
    if (parent)
        parent->installEventFilter(this);
}

void PopupView::sizeToContents() {
    QRect contents;
    for (const DisplayView* view : childViews())
        contents |= view->geometry();
    const int around = mMargin + kShadow;
    for (DisplayView* view : childViews())
        view->move(view->left() - contents.left() + around, view->top() - contents.top() + around);
    resize(contents.width() + 2 * around, contents.height() + 2 * around);
}

void PopupView::dismiss() {
    if (mDismissed)
        return;
    mDismissed = true;
    mTimer.stop();
    setVisible(false);
    deleteLater();
}

void PopupView::enabledFlagChanged(bool on) {
    if (!on)
        dismiss();
}

void PopupView::touchLost() {
    dismiss();
}

bool PopupView::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ChildPolished) {
        // A view that was made after this one would cover it; another popup may.
        if (!qobject_cast<PopupView*>(static_cast<QChildEvent*>(event)->child()))
            raise();
    } else if (event->type() == QEvent::Resize) {
        moveToMiddle();
    }
    return DisplayView::eventFilter(watched, event);
}

void PopupView::moveToMiddle() {
    if (parentWidget())
        move((parentWidget()->width() - width()) / 2, (parentWidget()->height() - height()) / 2);
}

void PopupView::resizeEvent(QResizeEvent* event) {
    DisplayView::resizeEvent(event);
    moveToMiddle();
}

void PopupView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF card = QRectF(rect()).adjusted(kShadow + 0.5, kShadow + 0.5, -kShadow - 0.5, -kShadow - 0.5);
    painter.setPen(Qt::NoPen);
    painter.setBrush(SkinColor::color("black3"));
    for (int grow = kShadow; grow > 0; --grow)
        painter.drawRoundedRect(card.adjusted(-grow, -grow, grow, grow), mCornerRadius + grow, mCornerRadius + grow);
    painter.setPen(SkinColor::color("edge"));
    painter.setBrush(SkinColor::color("panel"));
    painter.drawRoundedRect(card, mCornerRadius, mCornerRadius);
}
