#include "host/trace/TraceSeries.h"

#include "host/trace/TraceFile.h"

#include <algorithm>
#include <iterator>

TraceSeries::TraceSeries(const TraceFile& trace, int column) {
    for (int row = 0; row < trace.rowCount(); ++row) {
        const TraceFile::Cell cell = trace.cell(row, column);
        if (cell.state == TraceFile::Cell::State::Valid)
            mPoints.push_back({trace.timeOf(row), cell.number});
        else if (cell.state == TraceFile::Cell::State::Invalid)
            mPoints.push_back({trace.timeOf(row), std::nullopt});
    }
}

std::vector<TraceSeries::Point>::const_iterator TraceSeries::pointAt(double seconds) const {
    const auto after = std::upper_bound(mPoints.begin(), mPoints.end(), seconds,
                                        [](double time, const Point& point) { return time < point.seconds; });
    return after == mPoints.begin() ? mPoints.end() : std::prev(after);
}

std::optional<double> TraceSeries::valueAt(double seconds) const {
    const auto point = pointAt(seconds);
    return point == mPoints.end() ? std::nullopt : point->value;
}

std::optional<double> TraceSeries::interpolatedAt(double seconds) const {
    const auto from = pointAt(seconds);
    if (from == mPoints.end() || !from->value)
        return std::nullopt;
    const auto to = std::next(from);
    if (to == mPoints.end() || !to->value)
        return from->value;
    const double share = (seconds - from->seconds) / (to->seconds - from->seconds);
    return *from->value + share * (*to->value - *from->value);
}
