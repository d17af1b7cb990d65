#pragma once

// A finger on the screen: pointer events to the window, which finds out by itself who gets them.

#include <HelixDash/views/DisplayView.h>

#include <QTest>
#include <QWindow>

class Finger {
public:
    explicit Finger(DisplayView* screen) : mScreen(screen) {}

    static QPoint middle(const QWidget* view) { return view->rect().center(); }

    void press(const QWidget* view, const QPoint& place) {
        QTest::mousePress(window(), Qt::LeftButton, {}, at(view, place));
    }
    void press(const QWidget* view) { press(view, middle(view)); }
    void moveTo(const QWidget* view, const QPoint& place) { QTest::mouseMove(window(), at(view, place)); }
    // In steps of a touch panel's pace.
    void go(const QWidget* view, const QPoint& from, const QPoint& to) {
        constexpr int kSteps = 8;
        for (int step = 1; step <= kSteps; ++step) {
            moveTo(view, from + (to - from) * step / kSteps);
            QTest::qWait(8);
        }
    }
    void lift(const QWidget* view, const QPoint& place) {
        QTest::mouseRelease(window(), Qt::LeftButton, {}, at(view, place));
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
    QPoint at(const QWidget* view, const QPoint& place) const { return view->mapTo(mScreen, place); }
    QWindow* window() const { return mScreen->windowHandle(); }

    DisplayView* mScreen;
};
