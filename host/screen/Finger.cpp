#include "host/screen/Finger.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <QWidget>
#include <QWindow>

namespace {

// A deliberate movement of a fifth of a second, sampled as a touch panel does.
constexpr int kTouchDownMs = 30;
constexpr int kSampleMs = 10;
constexpr int kDragSamples = 16;
constexpr int kRestMs = 60;

}  // namespace

Finger::Finger(QWidget& window, QObject* parent) : QObject(parent), mWindow(window) {
    mTimer.setSingleShot(true);
    mTimer.setTimerType(Qt::PreciseTimer);
    connect(&mTimer, &QTimer::timeout, this, &Finger::playNext);
}

void Finger::tap(QPoint place, int holdMs) {
    mTouches = {{0, QEvent::MouseButtonPress, place}, {qMax(kTouchDownMs, holdMs), QEvent::MouseButtonRelease, place}};
    begin();
}

void Finger::drag(QPoint from, QPoint to) {
    mTouches = {{0, QEvent::MouseButtonPress, from}};
    for (int i = 1; i <= kDragSamples; ++i) {
        const QPointF place = QPointF(from) + QPointF(to - from) * i / kDragSamples;
        mTouches.push_back({i == 1 ? kTouchDownMs : kSampleMs, QEvent::MouseMove, place});
    }
    mTouches.push_back({kRestMs, QEvent::MouseMove, to});
    mTouches.push_back({kSampleMs, QEvent::MouseButtonRelease, to});
    begin();
}

void Finger::begin() {
    mTimer.start(mTouches.front().delayMs);
}

void Finger::playNext() {
    const Touch touch = mTouches.front();
    mTouches.pop_front();
    deliver(touch);
    if (mTouches.empty())
        emit lifted();
    else
        mTimer.start(mTouches.front().delayMs);
}

void Finger::deliver(const Touch& touch) {
    QWindow* window = mWindow.windowHandle();
    if (!window)
        return;
    const bool lifts = touch.type == QEvent::MouseButtonRelease;
    QMouseEvent event(touch.type, touch.place, touch.place, QPointF(window->mapToGlobal(QPoint())) + touch.place,
                      touch.type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                      lifts ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window, &event);
}
