#pragma once

#include "bench/signal/WavReader.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

// The one signal of a recording that is analysed, made while reading.
class MonoReader {
public:
    enum class Channel {
        Sum,   // mean of all channels
        Left,  // the first
        Right  // the second
    };

    // "sum", "left" or "right".
    static std::optional<Channel> channelFromWord(std::string_view word);

    // `wav` must outlive the reader and have the channel.
    MonoReader(WavReader& wav, Channel channel);

    int sampleRate() const { return mWav.sampleRate(); }
    std::int64_t samples() const { return mWav.frames(); }

    // Fills `mono` as far as the recording goes. Returns the number of samples.
    std::size_t read(std::span<float> mono);
    bool seek(std::int64_t sample) { return mWav.seek(sample); }

private:
    void mix(std::span<float> mono) const;

    WavReader& mWav;
    Channel mChannel;
    std::vector<float> mBlock;
};
