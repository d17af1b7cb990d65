#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Below this the motor hardly turns, and its orders lie below what a microphone hears.
inline constexpr double kLeastRpm = 300;

// The motor's speed over the time of a recording, from a text log of lines "MILLISECONDS, RPM", both whole numbers,
// times not decreasing. The blank may be missing.
class RpmLog {
public:
    // Nothing, and one line in `problem` that names file, line and reason, if the log is missing, empty or damaged. A
    // last line without its line end was being written when the writer ended: it is left out, and `problem` says so.
    static std::optional<RpmLog> read(const std::string& path, std::string& problem);

    // The speed in RPM at this many seconds of the log's time, interpolated; nothing before the first and after the
    // last line, and in gaps of more than 0.5 s.
    std::optional<double> rpmAt(double seconds) const;

    // The start, in seconds, of the stretch of this length from 0 s on in which the speed changes most.
    double liveliestStretch(double length) const;

private:
    struct Sample {
        std::int64_t time;  // ms
        std::int32_t rpm;
    };

    static std::optional<Sample> parse(std::string_view line);

    std::vector<Sample> mSamples;  // times increasing
};
