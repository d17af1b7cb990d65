#pragma once

// Watches a screen for a touch outside a place, and keeps that whole touch, until the finger is lifted, from everything
// else. What lies above everything (a popup, a list of choices) closes by it. Not for applications.
//
// It belongs to the screen and ends itself: retire() lets it go, which it does when the touch it keeps is over.

#include <QObject>
#include <QPointer>

#include <functional>

class DisplayView;
class QEvent;
class QMouseEvent;

class TouchTrap : public QObject {
    Q_OBJECT

public:
    // A touch on the given view, or in it, passes; null keeps every touch on the screen.
    TouchTrap(DisplayView* screen, DisplayView* letThrough);

    void retire();

signals:
    // The finger came down elsewhere.
    void touchedElsewhere();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool isOnScreen(QObject* watched) const;
    bool keepsPress(const QPoint& global);

    DisplayView* const mScreen;
    QPointer<DisplayView> mLetThrough;
    bool mKeeping = false;
    bool mRetired = false;
};
