#include "bench/sound/DriveMotion.h"

#include "host/trace/TraceFile.h"

#include <cmath>

namespace {

constexpr double kMetresPerMile = 1609.344;

std::optional<TraceSeries> seriesOf(const TraceFile& trace, const char* name) {
    const int column = trace.columnOf(QLatin1String(name));
    return column < 0 ? std::nullopt : std::optional<TraceSeries>(std::in_place, trace, column);
}

double magnitude(const std::optional<TraceSeries>& series, double seconds) {
    return series ? std::abs(series->interpolatedAt(seconds).value_or(0.0)) : 0.0;
}

}  // namespace

std::optional<DriveMotion> DriveMotion::read(const QString& path, QString* error) {
    const std::optional<TraceFile> trace = TraceFile::read(path, error);
    if (!trace)
        return std::nullopt;
    DriveMotion motion(*trace);
    if (!motion.mSpeed && !motion.mRpm && !motion.mTorque) {
        *error = path + QStringLiteral(": has none of VAPI_signedVehicleSpeed, VAPI_motorRPM and VAPI_torqueCmd");
        return std::nullopt;
    }
    if (motion.duration() <= 0.0) {
        *error = path + QStringLiteral(": has no two rows, and so no length");
        return std::nullopt;
    }
    return motion;
}

DriveMotion::DriveMotion(const TraceFile& trace)
    : mSpeed(seriesOf(trace, "VAPI_signedVehicleSpeed")),
      mRpm(seriesOf(trace, "VAPI_motorRPM")),
      mTorque(seriesOf(trace, "VAPI_torqueCmd")),
      mDuration(trace.duration()) {}

DriveMotion::Moment DriveMotion::at(double seconds) const {
    return {magnitude(mSpeed, seconds) * kMetresPerMile / 3600.0, magnitude(mRpm, seconds),
            magnitude(mTorque, seconds)};
}
