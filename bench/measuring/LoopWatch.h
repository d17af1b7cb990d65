#pragma once

#include <QElapsedTimer>
#include <QObject>

// Watches how long the thread it lives on is away from its event loop: from the moment the loop wakes to the moment it
// waits again.
class LoopWatch : public QObject {
    Q_OBJECT
public:
    LoopWatch();

    // Leaves the present absence out, for work that is meant to block.
    void excuse() { mExcused = true; }
    double longestMs() const { return double(mLongestNs) / 1e6; }

private:
    void woken();
    void waiting();

    QElapsedTimer mAway;
    bool mExcused = false;
    qint64 mLongestNs = 0;
};
