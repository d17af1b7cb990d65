#pragma once

#include <QEvent>
#include <QObject>
#include <QPointF>
#include <QTimer>

#include <deque>

class QWidget;

// A finger on the glass: pointer events that enter the window where those of a touch panel would, so that whatever lies
// on top at a place reacts, and what is hidden, disabled or covered does not.
//
// Places are pixels of the window. One gesture at a time. UI thread.
class Finger : public QObject {
    Q_OBJECT
public:
    // The window has to outlive the finger.
    explicit Finger(QWidget& window, QObject* parent = nullptr);

    void tap(QPoint place, int holdMs);
    // Slow enough at its end that nothing flies on.
    void drag(QPoint from, QPoint to);

signals:
    // The gesture has ended and its last event has been delivered.
    void lifted();

private:
    struct Touch {
        int delayMs;
        QEvent::Type type;
        QPointF place;
    };

    void begin();
    void playNext();
    void deliver(const Touch& touch);

    QWidget& mWindow;
    std::deque<Touch> mTouches;
    QTimer mTimer;
};
