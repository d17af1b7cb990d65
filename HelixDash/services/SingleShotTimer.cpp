#include "HelixDash/services/SingleShotTimer.h"

SingleShotTimer::SingleShotTimer(QObject* parent) : QObject(parent), mTimer(this) {
    mTimer.setSingleShot(true);
    // Others fire up to a twentieth too early.
    mTimer.setTimerType(Qt::PreciseTimer);
}

void SingleShotTimer::stop() {
    mTimer.stop();
    mTimer.disconnect();
}
