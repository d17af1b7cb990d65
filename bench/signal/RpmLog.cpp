#include "bench/signal/RpmLog.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

constexpr double kLongestGap = 500;  // ms
constexpr double kFastest = 100000;  // RPM

struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

// The whole file; nothing, with errno telling why, if it cannot be read.
std::optional<std::string> contentsOf(const std::string& path) {
    const std::unique_ptr<std::FILE, Close> file(std::fopen(path.c_str(), "rb"));
    if (!file) {
        return std::nullopt;
    }
    std::string contents;
    std::array<char, 65536> block{};
    while (const std::size_t size = std::fread(block.data(), 1, block.size(), file.get())) {
        contents.append(block.data(), size);
    }
    if (std::ferror(file.get())) {
        return std::nullopt;
    }
    return contents;
}

std::string_view withoutBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t");
    return first == std::string_view::npos ? std::string_view() : text.substr(first);
}

// Takes a number off the front of `text`.
template <class Number>
std::optional<Number> takeNumber(std::string_view& text) {
    Number number{};
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (failure != std::errc()) {
        return std::nullopt;
    }
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return number;
}

}  // namespace

std::optional<RpmLog::Sample> RpmLog::parse(std::string_view line) {
    if (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    line = withoutBlanks(line);
    const std::optional<std::int64_t> time = takeNumber<std::int64_t>(line);
    if (!time || *time < 0 || !line.starts_with(',')) {
        return std::nullopt;
    }
    line = withoutBlanks(line.substr(1));
    const std::optional<std::int32_t> rpm = takeNumber<std::int32_t>(line);
    if (!rpm || !withoutBlanks(line).empty()) {
        return std::nullopt;
    }
    return Sample{*time, *rpm};
}

std::optional<RpmLog> RpmLog::read(const std::string& path, std::string& problem) {
    const std::optional<std::string> contents = contentsOf(path);
    if (!contents) {
        problem = path + ": " + std::strerror(errno);
        return std::nullopt;
    }

    RpmLog log;
    std::string_view rest = *contents;
    for (int number = 1; !rest.empty(); ++number) {
        const std::string place = path + ":" + std::to_string(number) + ": ";
        const std::size_t end = rest.find('\n');
        if (end == std::string_view::npos) {
            problem = place + "the last line has no line end and is left out";
            break;
        }
        const std::optional<Sample> sample = parse(rest.substr(0, end));
        rest.remove_prefix(end + 1);
        if (!sample) {
            problem = place + "is no \"MILLISECONDS, RPM\" in whole numbers";
            return std::nullopt;
        }
        if (std::abs(static_cast<double>(sample->rpm)) > kFastest) {
            problem = place + "no motor turns that fast";
            return std::nullopt;
        }
        if (!log.mSamples.empty() && sample->time <= log.mSamples.back().time) {
            if (sample->time < log.mSamples.back().time) {
                problem = place + "its time is before that of the line above";
                return std::nullopt;
            }
            log.mSamples.pop_back();
        }
        log.mSamples.push_back(*sample);
    }
    if (log.mSamples.empty()) {
        problem = path + ": holds no whole line";
        return std::nullopt;
    }
    return log;
}

std::optional<double> RpmLog::rpmAt(double seconds) const {
    const double time = seconds * 1000;
    const auto after = std::ranges::lower_bound(mSamples, time, {},
                                                [](const Sample& sample) { return static_cast<double>(sample.time); });
    if (after == mSamples.end()) {
        return std::nullopt;
    }
    const auto afterTime = static_cast<double>(after->time);
    if (afterTime == time) {
        return after->rpm;
    }
    if (after == mSamples.begin()) {
        return std::nullopt;
    }
    const Sample& before = *std::prev(after);
    const double gap = afterTime - static_cast<double>(before.time);
    if (gap > kLongestGap) {
        return std::nullopt;
    }
    const double share = (time - static_cast<double>(before.time)) / gap;
    return before.rpm + share * (static_cast<double>(after->rpm) - before.rpm);
}

double RpmLog::liveliestStretch(double length) const {
    double change = 0;
    double most = -1;
    std::int64_t bestStart = 0;
    std::size_t first = 0;
    const auto step = [this](std::size_t index) {
        return std::abs(static_cast<double>(mSamples[index + 1].rpm) - mSamples[index].rpm);
    };
    for (std::size_t last = 0; last < mSamples.size(); ++last) {
        change += last > 0 ? step(last - 1) : 0;
        while (static_cast<double>(mSamples[last].time - mSamples[first].time) > length * 1000) {
            change -= step(first++);
        }
        if (change > most) {
            most = change;
            bestStart = mSamples[first].time;
        }
    }
    return static_cast<double>(bestStart) / 1000;
}
