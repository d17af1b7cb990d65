#include "HelixDash/services/SingleShotTimer.h"

SingleShotTimer::SingleShotTimer(QObject* parent) : QObject(parent), mTimer(this) {
    mTimer.setSingleShot(true);
}

void SingleShotTimer::stop() {
    mTimer.stop();
    mTimer.disconnect();
}
