#pragma once

#include <HelixDash/services/SingleShotTimer.h>

#include <QElapsedTimer>

// The times of one recording. The timers are armed again by the slots that they call, as long as the engine runs.
struct RunClock {
    QElapsedTimer mRecordingClock;      // since the recorder was started
    SingleShotTimer mDurationTimer;     // ends a timed recording
    SingleShotTimer mTimeCounterTimer;  // shows the time
    SingleShotTimer mRpmTimer;          // shows the motor's speed
    quint32 mMotorRpm = 0;              // 1/min, as it was shown last
};
