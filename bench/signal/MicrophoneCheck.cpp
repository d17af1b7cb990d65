#include "bench/signal/MicrophoneCheck.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <string_view>
#include <utility>

namespace {

constexpr double kShortestRecording = 0.1;  // s
constexpr std::size_t kBlockSamples = 65536;

const char* wordOf(MicrophoneCheck::Verdict verdict) {
    static constexpr std::array kWords{"DEAD", "CLIPPED", "STUCK", "DUPLICATE", "DROPOUT", "LEVEL", "OK"};
    return kWords[static_cast<std::size_t>(verdict)];
}

double toDecibels(double rms) {
    return 20.0 * std::log10(rms);
}

[[gnu::format(printf, 1, 2)]] std::string formatted(const char* format, ...) {
    std::array<char, 256> buffer{};
    va_list arguments;
    va_start(arguments, format);
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): va_start has initialised it
    std::vsnprintf(buffer.data(), buffer.size(), format, arguments);
    va_end(arguments);
    return buffer.data();
}

double medianOf(std::vector<double> values) {
    if (values.empty()) {
        return 0;
    }
    std::ranges::sort(values);
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

// Pairs of channels that have been equal so far. Independent microphones part within the first samples, so hardly
// anything is compared after the first block.
class EqualPairs {
public:
    explicit EqualPairs(std::size_t channels) {
        for (std::size_t later = 1; later < channels; ++later) {
            for (std::size_t earlier = 0; earlier < later; ++earlier) {
                mPairs.emplace_back(earlier, later);
            }
        }
    }

    void add(const std::vector<std::vector<double>>& channels) {
        std::erase_if(
            mPairs, [&](const auto& pair) { return !std::ranges::equal(channels[pair.first], channels[pair.second]); });
    }

    const std::vector<std::pair<std::size_t, std::size_t>>& pairs() const { return mPairs; }

private:
    std::vector<std::pair<std::size_t, std::size_t>> mPairs;
};

}  // namespace

MicrophoneCheck::MicrophoneCheck(const WavReader& wav, const Limits& limits)
    : mLimits(limits), mSampleRate(wav.sampleRate()) {}

std::optional<MicrophoneCheck> MicrophoneCheck::run(WavReader& wav, const Limits& limits, std::string& error) {
    MicrophoneCheck check(wav, limits);
    const auto channels = static_cast<std::size_t>(wav.channels());
    std::vector<ChannelMeter> meters(channels, ChannelMeter(wav.sampleRate(), wav.fullScale()));
    EqualPairs equal(channels);

    std::vector<double> block(std::max(kBlockSamples / channels, std::size_t(256)) * channels);
    std::vector<std::vector<double>> separate(channels);
    while (const std::size_t frames = wav.read(std::span(block))) {
        check.mFrames += static_cast<std::int64_t>(frames);
        for (std::size_t channel = 0; channel < channels; ++channel) {
            separate[channel].resize(frames);
            for (std::size_t frame = 0; frame < frames; ++frame) {
                separate[channel][frame] = block[frame * channels + channel];
            }
            meters[channel].add(separate[channel]);
        }
        equal.add(separate);
    }

    const double seconds = static_cast<double>(check.mFrames) / wav.sampleRate();
    if (check.mFrames == 0) {
        error = "holds no sound";
        return std::nullopt;
    }
    if (seconds < kShortestRecording) {
        error = formatted("holds only %.3f s of sound, at least %.1f s are needed", seconds, kShortestRecording);
        return std::nullopt;
    }

    Originals originals(channels);
    for (const auto& [earlier, later] : equal.pairs()) {
        originals[later] = std::min(originals[later].value_or(earlier), earlier);
    }
    check.judge(meters, originals);
    return check;
}

bool MicrophoneCheck::isLive(const ChannelMeter& meter) const {
    return meter.rms() >= mLimits.rms && meter.rms() > 0;
}

void MicrophoneCheck::judge(const std::vector<ChannelMeter>& meters, const Originals& originals) {
    std::vector<double> liveLevels;
    for (const ChannelMeter& meter : meters) {
        if (isLive(meter)) {
            liveLevels.push_back(toDecibels(meter.rms()));
        }
    }
    const double median = medianOf(liveLevels);
    for (std::size_t channel = 0; channel < meters.size(); ++channel) {
        mMicrophones.push_back(judgeOne(meters[channel], originals[channel], median));
    }
}

MicrophoneCheck::Microphone MicrophoneCheck::judgeOne(const ChannelMeter& meter, std::optional<std::size_t> original,
                                                      double median) const {
    Microphone microphone;
    microphone.level = toDecibels(meter.rms());
    const bool live = isLive(meter);
    if (live) {
        microphone.difference = microphone.level - median;
    }

    if (!live && std::abs(meter.dc()) <= mLimits.rms) {
        microphone.verdict = Verdict::Dead;
        microphone.advice = "no sound: check plug and supply";
    } else if (meter.clipped().count > 0) {
        microphone.verdict = Verdict::Clipped;
        microphone.advice = "overloaded " + place(meter.clipped()) + ": lower the gain";
    } else if (!live) {
        microphone.verdict = Verdict::Stuck;
        microphone.advice = formatted("only DC (%+.4f): replace it", meter.dc());
    } else if (meter.frozen().count > 0) {
        microphone.verdict = Verdict::Stuck;
        microphone.advice = "frozen " + place(meter.frozen()) + ": replace it";
    } else if (original) {
        microphone.verdict = Verdict::Duplicate;
        microphone.advice = formatted("same as mic %zu: check the wiring", *original + 1);
    } else if (meter.dropouts().count > 0) {
        microphone.verdict = Verdict::Dropout;
        microphone.advice = "silent " + place(meter.dropouts()) + ": check the contacts";
    } else if (std::abs(*microphone.difference) > mLimits.difference) {
        microphone.verdict = Verdict::Level;
        microphone.advice = *microphone.difference > 0 ? "louder than the others: check place and gain"
                                                       : "quieter than the others: check place, cover and gain";
    }
    return microphone;
}

std::string MicrophoneCheck::place(const ChannelMeter::Places& places) const {
    const double milliseconds = 1000.0 * static_cast<double>(places.longest) / mSampleRate;
    std::string text = formatted("for %.*f ms at %.2f s", milliseconds < 10 ? 2 : 0, milliseconds,
                                 static_cast<double>(places.longestStart) / mSampleRate);
    if (places.count > 1) {
        text += formatted(" (longest of %lld)", static_cast<long long>(places.count));
    }
    return text;
}

bool MicrophoneCheck::passed() const {
    return std::ranges::all_of(mMicrophones, [](const Microphone& mic) { return mic.verdict == Verdict::Ok; });
}

std::string MicrophoneCheck::report() const {
    std::string text = formatted("MIC CHECK: %s (%zu ch, %d Hz, %.1f s; RMS>=", passed() ? "PASS" : "FAIL",
                                 mMicrophones.size(), mSampleRate, static_cast<double>(mFrames) / mSampleRate) +
                       mLimits.rmsText + ", diff<=" + mLimits.differenceText + " dB)\n";

    const int numberWidth = static_cast<int>(std::to_string(mMicrophones.size()).size());
    for (std::size_t index = 0; index < mMicrophones.size(); ++index) {
        const Microphone& mic = mMicrophones[index];
        text += formatted("mic %*zu  %-9s  %6.1f dBFS", numberWidth, index + 1, wordOf(mic.verdict), mic.level);
        // Adding 0 after rounding makes no "-0.0" of a hair's breadth.
        text += mic.difference ? formatted("  %+6.1f dB", std::round(*mic.difference * 10) / 10 + 0.0)
                               : formatted("  %6s   ", "-");
        if (!mic.advice.empty()) {
            text += "  " + mic.advice;
        }
        text += '\n';
    }
    return text;
}
