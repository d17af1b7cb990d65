#pragma once

#include <HelixDash/Export.h>

#include <QTimer>

// Calls one slot once, after a delay. Arming it again replaces what it was armed for; it dies with its holder, and
// nothing is called after that.
//
//     mStopTimer.start(2000, this, &Engine::stop);
//
// Belongs to the thread that made it.
class HELIXDASH_EXPORT SingleShotTimer : public QObject {
    Q_OBJECT
public:
    explicit SingleShotTimer(QObject* parent = nullptr);

    // Calls receiver->slot() after that many milliseconds (0: at the next turn of the event loop). A receiver that is
    // destroyed before is not called.
    template <typename Receiver, typename Slot>
    void start(int milliseconds, Receiver* receiver, Slot slot) {
        stop();
        QObject::connect(&mTimer, &QTimer::timeout, receiver, slot);
        mTimer.start(qMax(0, milliseconds));
    }

    void stop();
    bool isActive() const { return mTimer.isActive(); }

private:
    QTimer mTimer;
};
