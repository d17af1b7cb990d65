#pragma once

#include <QElapsedTimer>
#include <QEvent>

#include <algorithm>
#include <utility>

// An application that knows how long its thread was away from the event loop at the longest: the time that one event
// took, with everything that was called from it.
//
//     LoopWatch<QCoreApplication> application(argc, argv);
template <typename Application>
class LoopWatch : public Application {
public:
    using Application::Application;

    bool notify(QObject* receiver, QEvent* event) override {
        // An event within an event is part of the outer one.
        if (std::exchange(mBusy, true))
            return Application::notify(receiver, event);
        mExcused = false;
        mClock.start();
        const bool handled = Application::notify(receiver, event);
        if (!mExcused)
            mLongestNs = std::max(mLongestNs, mClock.nsecsElapsed());
        mBusy = false;
        return handled;
    }

    // Leaves the event that is being handled out, for work that is meant to block.
    void excuse() { mExcused = true; }
    void forget() { mLongestNs = 0; }
    double longestMs() const { return double(mLongestNs) / 1e6; }

private:
    QElapsedTimer mClock;
    qint64 mLongestNs = 0;
    bool mBusy = false;
    bool mExcused = false;
};
