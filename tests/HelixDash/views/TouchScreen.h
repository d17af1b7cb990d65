#pragma once

#include <HelixDash/views/DisplayView.h>

#include <QTest>
#include <QWindow>

// A screen and the finger on it: pointer events to the window, which finds out by itself who gets them.
class TouchScreen : public DisplayView {
public:
    TouchScreen(int width, int height) { resize(width, height); }

    // Once all is there that is to be seen at first; false if it does not get to the display.
    bool appears() {
        show(true);
        return QTest::qWaitForWindowExposed(this);
    }

    static QPoint middle(const QWidget* view) { return view->rect().center(); }

    void press(const QWidget* view, const QPoint& place) {
        QTest::mousePress(windowHandle(), Qt::LeftButton, {}, at(view, place));
    }
    void press(const QWidget* view) { press(view, middle(view)); }
    void moveTo(const QWidget* view, const QPoint& place) { QTest::mouseMove(windowHandle(), at(view, place)); }
    // In steps of a touch panel's pace.
    void go(const QWidget* view, const QPoint& from, const QPoint& to) {
        constexpr int kSteps = 8;
        for (int step = 1; step <= kSteps; ++step) {
            moveTo(view, from + (to - from) * step / kSteps);
            QTest::qWait(8);
        }
    }
    void lift(const QWidget* view, const QPoint& place) {
        QTest::mouseRelease(windowHandle(), Qt::LeftButton, {}, at(view, place));
    }
    void lift(const QWidget* view) { lift(view, middle(view)); }
    void tap(const QWidget* view, const QPoint& place) {
        press(view, place);
        lift(view, place);
    }
    void tap(const QWidget* view) { tap(view, middle(view)); }
    void drag(const QWidget* view, const QPoint& from, const QPoint& to) {
        press(view, from);
        go(view, from, to);
        lift(view, to);
    }

private:
    QPoint at(const QWidget* view, const QPoint& place) const { return view->mapTo(this, place); }
};
