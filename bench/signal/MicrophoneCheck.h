#pragma once

#include "bench/signal/ChannelMeter.h"
#include "bench/signal/WavReader.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// Judges the microphones of a recording: which of them hears, and if not, what is wrong with it.
//
//     std::string error;
//     if (const std::optional<MicrophoneCheck> check = MicrophoneCheck::run(*wav, limits, error)) {
//         puts(check->report().c_str());
//     }
class MicrophoneCheck {
public:
    // The first that applies, in this order, is a microphone's verdict.
    enum class Verdict {
        Dead,       // neither sound nor DC reaches the least RMS
        Clipped,    // three or more samples in a row at full scale
        Stuck,      // DC without sound, or frozen at one value for more than 100 ms
        Duplicate,  // the same samples as an earlier microphone
        Dropout,    // zeros for more than 10 ms
        Level,      // too far from the median level of the live ones
        Ok
    };

    struct Limits {
        double rms = 0;         // least RMS of a live microphone, full scale 1.0
        double difference = 0;  // greatest distance from the median level in dB
        // Both as the caller wrote them, for the report.
        std::string rmsText;
        std::string differenceText;
    };

    struct Microphone {
        Verdict verdict = Verdict::Ok;
        double level = 0;                  // dB, an RMS of 1.0 is 0; minus infinity for none
        std::optional<double> difference;  // dB to the median of the live ones, which alone have one
        std::string advice;                // what was seen and what to do; empty for Ok
    };

    // Reads the whole recording, block by block. Nothing, and a line in `error` without the file's name, if it holds
    // less than 0.1 s.
    static std::optional<MicrophoneCheck> run(WavReader& wav, const Limits& limits, std::string& error);

    bool passed() const;
    const std::vector<Microphone>& microphones() const { return mMicrophones; }

    // The verdict's line, then one line a microphone; a line end after each.
    std::string report() const;

private:
    MicrophoneCheck(const WavReader& wav, const Limits& limits);

    // The earlier channel that each channel has equalled so far, if any.
    using Originals = std::vector<std::optional<std::size_t>>;

    void judge(const std::vector<ChannelMeter>& meters, const Originals& originals);
    Microphone judgeOne(const ChannelMeter& meter, std::optional<std::size_t> original, double median) const;
    bool isLive(const ChannelMeter& meter) const;
    std::string place(const ChannelMeter::Places& places) const;

    Limits mLimits;
    int mSampleRate;
    std::int64_t mFrames = 0;
    std::vector<Microphone> mMicrophones;
};
