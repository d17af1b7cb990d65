#include "HelixDash/views/TouchTrap.h"

#include <HelixDash/views/DisplayView.h>

#include <QApplication>
#include <QMouseEvent>
#include <QWindow>

namespace {

QPoint globalPlace(QObject* watched, const QMouseEvent* event) {
    if (auto* window = qobject_cast<QWindow*>(watched))
        return window->mapToGlobal(event->pos());
    return static_cast<QWidget*>(watched)->mapToGlobal(event->pos());
}

bool contains(const QWidget* view, const QPoint& global) {
    return view->rect().contains(view->mapFromGlobal(global));
}

}  // namespace

TouchTrap::TouchTrap(DisplayView* owner, OnOwner onOwner) : QObject(owner), mOwner(owner), mOnOwner(onOwner) {
    qApp->installEventFilter(this);
}

// The window hears of a touch before its widgets do; a widget hears of it alone where it is sent to it directly.
bool TouchTrap::isOnScreen(QObject* watched) const {
    if (watched->isWindowType())
        return watched == mOwner->window()->windowHandle();
    const DisplayView* screen = mOwner->screenView();
    auto* widget = qobject_cast<QWidget*>(watched);
    return widget && (widget == screen || screen->isAncestorOf(widget));
}

bool TouchTrap::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::MouseButtonPress && event->type() != QEvent::MouseButtonDblClick)
        return false;
    if (!mOwner->isVisible() || !isOnScreen(watched))
        return false;
    const QPoint place = globalPlace(watched, static_cast<QMouseEvent*>(event));
    if (!contains(mOwner->screenView(), place) || (mOnOwner == OnOwner::Passes && contains(mOwner, place)))
        return false;
    emit touchedElsewhere();
    return true;
}
