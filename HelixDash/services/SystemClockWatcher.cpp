#include "HelixDash/services/SystemClockWatcher.h"

#include <QDateTime>

SystemClockWatcher* SystemClockWatcher::instance() {
    static SystemClockWatcher watcher;
    return &watcher;
}

qint64 SystemClockWatcher::currentTimeUtcSecs() const {
    return QDateTime::currentSecsSinceEpoch();
}
