// Stands where a vehicle has its analysis program: which orders of the motor sound how loud at which speed. The table
// goes to standard output, so that it can be judged as it is; everything said to a person goes to standard error.

#include "bench/signal/CommandLine.h"
#include "bench/signal/MonoReader.h"
#include "bench/signal/OrderAnalysis.h"
#include "bench/signal/OrderSummary.h"
#include "bench/signal/RpmLog.h"
#include "bench/signal/WavReader.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace {

constexpr std::array kFftSizes{512, 1024, 2048, 4096, 8192, 16384, 32768, 65536};

// Speeds that differ by less than this factor tell an order from a tone of fixed frequency only by chance.
constexpr double kSteady = 1.05;

constexpr char kHelp[] =
    R"(Usage: whine WAV RPM_LOG CHANNEL FFT_SIZE

Finds the orders of the motor (whole and other multiples of its revolutions) in a recording.

  WAV       the recording
  RPM_LOG   the motor speed: lines "MILLISECONDS, RPM" in whole numbers, milliseconds since the recording's start
  CHANNEL   sum (mean of all channels), left (the first) or right (the second)
  FFT_SIZE  2048, 4096, 8192 or 16384, also 512, 1024, 32768 and 65536: long ones separate close orders at steady
            speed, short ones follow a fast ramp

Standard output is a table without a heading: frequency in Hz, order, level in dBFS (0 is an RMS of 1.0), RPM. A line
is a component that stands at least 6 dB above the median of its neighbourhood in the mean power of a speed bin of
50 RPM; bins rise, within a bin the strongest comes first. Frames below 300 RPM or without a known speed are left out.
If the log cannot be used, the table is that of the whole recording, and orders and RPM read 0.

Standard error tells the strongest orders, tones of fixed frequency, and how late the log is against the recording,
which is estimated and corrected.

Status: 0 done, 2 not analysed (no WAV file, too short, unusable arguments).
)";

int refuse(const std::string& reason) {
    std::fprintf(stderr, "whine: %s\n", reason.c_str());
    return 2;
}

std::optional<int> parseFftSize(std::string_view word) {
    for (const int size : kFftSizes) {
        if (word == std::to_string(size)) {
            return size;
        }
    }
    return std::nullopt;
}

void printTable(const OrderAnalysis& analysis) {
    for (const RpmBinLines& bin : analysis.bins) {
        for (const SpectrumLine& line : bin.lines) {
            // Never a blank in front: it would count as an empty first field.
            std::printf("%-9.2f %8.3f %8.2f %8.1f\n", line.frequency, line.order, line.level, bin.rpm);
        }
    }
}

void printOffset(const OffsetEstimate& offset) {
    switch (offset.outcome) {
        case OffsetEstimate::Outcome::Found:
            std::fprintf(stderr, "offset: %+d ms, by which the log is late against the recording (clear by %.1f dB)\n",
                         offset.milliseconds, offset.contrast);
            break;
        case OffsetEstimate::Outcome::SpeedHardlyChanges:
            std::fprintf(stderr, "offset: not estimated, 0 ms used: the speed hardly changes\n");
            break;
        case OffsetEstimate::Outcome::NoClearOrders:
            std::fprintf(stderr, "offset: not estimated, 0 ms used: no order stands out clearly\n");
            break;
    }
}

void printComponent(const char* kind, const Component& component, const char* unit, std::size_t bins) {
    std::fprintf(stderr, "%-6s %8.2f %-2s %7.2f dBFS", kind, component.value, unit, component.level);
    if (component.rpm > 0) {
        std::fprintf(stderr, " at %.0f RPM, in %zu of %zu bins", component.rpm, component.bins, bins);
    }
    std::fputc('\n', stderr);
}

void printSummary(const OrderAnalysis& analysis) {
    std::fprintf(stderr, "level: %.1f dBFS overall, in steps of %.2f Hz\n", 10 * std::log10(analysis.meanSquare),
                 analysis.binWidth);
    if (analysis.offset) {
        printOffset(*analysis.offset);
    }
    if (analysis.framesInOrders > 0) {
        std::fprintf(stderr, "speed: %.0f to %.0f RPM in %zu bins, %lld of %lld frames\n", analysis.bins.front().rpm,
                     analysis.bins.back().rpm, analysis.bins.size(), static_cast<long long>(analysis.framesInOrders),
                     static_cast<long long>(analysis.frames));
    }
    if (analysis.bins.back().rpm < kSteady * analysis.bins.front().rpm) {
        std::fprintf(stderr, "At so steady a speed tones of fixed frequency look like orders.\n");
    }
    const OrderSummary summary = OrderSummary::of(analysis);
    for (const Component& order : summary.orders) {
        printComponent("order:", order, "", analysis.bins.size());
    }
    for (const Component& tone : summary.tones) {
        printComponent("tone:", tone, "Hz", analysis.bins.size());
    }
    if (summary.orders.empty() && summary.tones.empty()) {
        std::fprintf(stderr, "no order and no tone stands out\n");
    }
}

std::optional<RpmLog> readLog(const std::string& path) {
    std::string problem;
    std::optional<RpmLog> log = RpmLog::read(path, problem);
    if (!problem.empty()) {
        std::fprintf(stderr, "whine: warning: %s%s\n", problem.c_str(), log ? "" : "; orders read 0");
    }
    return log;
}

}  // namespace

int main(int argc, char* argv[]) {
    const std::span arguments(argv + 1, argv + argc);
    if (const std::optional<int> status = answerStandardOptions(arguments, "whine", NVH_VERSION, kHelp)) {
        return *status;
    }
    if (arguments.size() != 4) {
        return refuse("wants WAV RPM_LOG CHANNEL FFT_SIZE, got " + std::to_string(arguments.size()) +
                      " arguments; see whine --help");
    }
    const std::optional<MonoReader::Channel> channel = MonoReader::channelFromWord(arguments[2]);
    if (!channel) {
        return refuse("the channel '" + std::string(arguments[2]) + "' is not sum, left or right");
    }
    const std::optional<int> fftSize = parseFftSize(arguments[3]);
    if (!fftSize) {
        return refuse("the FFT size '" + std::string(arguments[3]) + "' is no power of two from 512 to 65536");
    }

    std::string error;
    std::optional<WavReader> wav = WavReader::open(arguments[0], error);
    if (!wav) {
        return refuse(error);
    }
    if (*channel == MonoReader::Channel::Right && wav->channels() < 2) {
        return refuse(std::string(arguments[0]) + ": has one channel, so there is no right one");
    }
    const std::optional<RpmLog> log = readLog(arguments[1]);
    MonoReader reader(*wav, *channel);
    const OrderAnalysis analysis = analyseOrders(reader, log, *fftSize);
    if (analysis.frames == 0) {
        return refuse(std::string(arguments[0]) + ": holds less than the " + std::string(arguments[3]) +
                      " samples of one FFT");
    }
    if (log && analysis.framesInOrders == 0) {
        std::fprintf(stderr, "whine: warning: %s: gives no speed of 300 RPM or more for any frame; orders read 0\n",
                     arguments[1]);
    }
    printTable(analysis);
    if (std::fflush(stdout) != 0) {
        return refuse("the table cannot be written");
    }
    printSummary(analysis);
    return 0;
}
