#pragma once

#include <optional>
#include <vector>

class TraceFile;

// One column of a trace as a function of time.
//
//     const TraceSeries rpm(trace, trace.columnOf("VAPI_motorRPM"));
//     const double now = rpm.interpolatedAt(seconds).value_or(0.0);
//
// Copies what it needs; reading is safe from any thread.
class TraceSeries {
public:
    TraceSeries(const TraceFile& trace, int column);

    // What a replay shows at that second: the last value given until then. Nothing before the first one and where the
    // value is invalid.
    std::optional<double> valueAt(double seconds) const;

    // The same, on the straight line to the next value given, for what has to move without steps.
    std::optional<double> interpolatedAt(double seconds) const;

private:
    struct Point {
        double seconds;
        std::optional<double> value;
    };

    // The last point at or before that second; mPoints.end() if there is none.
    std::vector<Point>::const_iterator pointAt(double seconds) const;

    std::vector<Point> mPoints;
};
