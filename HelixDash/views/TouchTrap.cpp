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

TouchTrap::TouchTrap(DisplayView* screen, DisplayView* letThrough)
    : QObject(screen), mScreen(screen), mLetThrough(letThrough) {
    qApp->installEventFilter(this);
}

void TouchTrap::retire() {
    mRetired = true;
    if (!mKeeping)
        deleteLater();
}

bool TouchTrap::isOnScreen(QObject* watched) const {
    if (watched->isWindowType())
        return watched == mScreen->window()->windowHandle();
    auto* widget = qobject_cast<QWidget*>(watched);
    return widget && (widget == mScreen || mScreen->isAncestorOf(widget));
}

bool TouchTrap::keepsPress(const QPoint& global) {
    mKeeping = false;
    if (mRetired) {
        deleteLater();
        return false;
    }
    if (!contains(mScreen, global) || (mLetThrough && contains(mLetThrough, global)))
        return false;
    mKeeping = true;
    emit touchedElsewhere();
    return true;
}

bool TouchTrap::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
            return isOnScreen(watched) && keepsPress(globalPlace(watched, static_cast<QMouseEvent*>(event)));
        case QEvent::MouseMove:
            return mKeeping && isOnScreen(watched);
        case QEvent::MouseButtonRelease:
            if (!mKeeping || !isOnScreen(watched))
                return false;
            mKeeping = false;
            if (mRetired)
                deleteLater();
            return true;
        default:
            return false;
    }
}
