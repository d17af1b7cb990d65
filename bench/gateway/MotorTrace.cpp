#include "bench/gateway/MotorTrace.h"

#include "host/trace/TraceFile.h"
#include "host/trace/TraceSeries.h"

#include <algorithm>
#include <cmath>

namespace {

CanFrame motorFrame(std::int64_t us, CanAddress address, double rpm) {
    const auto whole = static_cast<std::uint16_t>(std::lround(std::min(std::abs(rpm), 65535.0)));
    CanFrame frame{us, address, 8, {}};
    frame.data[4] = static_cast<std::uint8_t>(whole & 0xFFU);
    frame.data[5] = static_cast<std::uint8_t>(whole >> 8U);
    return frame;
}

}  // namespace

std::optional<Recording> readMotorTrace(const QString& path, int periodMs, std::optional<CanAddress> address,
                                        QString* error) {
    const auto trace = TraceFile::read(path, error);
    if (!trace)
        return std::nullopt;
    const int column = trace->columnOf(QStringLiteral("VAPI_motorRPM"));
    if (column < 0) {
        *error = QStringLiteral("%1: no column VAPI_motorRPM").arg(path);
        return std::nullopt;
    }
    const TraceSeries rpm(*trace, column);
    Recording recording;
    recording.asAskedFor = !address;
    const std::int64_t periodUs = std::int64_t(periodMs) * 1000;
    const auto lastUs = static_cast<std::int64_t>(std::llround(trace->duration() * 1e6));
    std::int64_t us = 0;
    for (; us <= lastUs; us += periodUs) {
        if (const auto now = rpm.interpolatedAt(double(us) / 1e6))
            recording.frames.push_back(motorFrame(us, address.value_or(CanAddress{}), *now));
    }
    recording.passUs = us;
    if (recording.frames.empty()) {
        *error = QStringLiteral("%1: VAPI_motorRPM is never valid").arg(path);
        return std::nullopt;
    }
    return recording;
}
