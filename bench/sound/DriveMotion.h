#pragma once

#include "host/trace/TraceSeries.h"

#include <QString>

#include <optional>

class TraceFile;

// What of a trace can be heard: how fast the car rolls, how fast the motor turns and how hard it works.
class DriveMotion {
public:
    struct Moment {
        double speed = 0.0;   // m/s, without sign
        double rpm = 0.0;     // 1/min, without sign
        double torque = 0.0;  // Nm at the motor, without sign
    };

    // Null, with the file and the reason, for a trace that cannot be read, holds nothing to be heard or has no length.
    static std::optional<DriveMotion> read(const QString& path, QString* error);

    // Between two rows on a straight line; what is missing or invalid counts as standing still.
    Moment at(double seconds) const;
    double duration() const { return mDuration; }

private:
    explicit DriveMotion(const TraceFile& trace);

    std::optional<TraceSeries> mSpeed;
    std::optional<TraceSeries> mRpm;
    std::optional<TraceSeries> mTorque;
    double mDuration = 0.0;
};
