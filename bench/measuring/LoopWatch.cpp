#include "bench/measuring/LoopWatch.h"

#include <QAbstractEventDispatcher>

#include <utility>

LoopWatch::LoopWatch() {
    const auto* dispatcher = QAbstractEventDispatcher::instance();
    connect(dispatcher, &QAbstractEventDispatcher::awake, this, &LoopWatch::woken, Qt::DirectConnection);
    connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this, &LoopWatch::waiting, Qt::DirectConnection);
}

void LoopWatch::woken() {
    mAway.start();
}

void LoopWatch::waiting() {
    if (!mAway.isValid())
        return;
    if (!std::exchange(mExcused, false))
        mLongestNs = std::max(mLongestNs, mAway.nsecsElapsed());
    mAway.invalidate();
}
