#include "bench/signal/MonoReader.h"

#include <algorithm>
#include <numeric>

namespace {

// Small enough to stay in the cache between reading and mixing.
constexpr std::size_t kBlockSamples = 16384;

}  // namespace

std::optional<MonoReader::Channel> MonoReader::channelFromWord(std::string_view word) {
    if (word == "sum") {
        return Channel::Sum;
    }
    if (word == "left") {
        return Channel::Left;
    }
    if (word == "right") {
        return Channel::Right;
    }
    return std::nullopt;
}

MonoReader::MonoReader(WavReader& wav, Channel channel) : mWav(wav), mChannel(channel) {
    const auto channels = static_cast<std::size_t>(wav.channels());
    mBlock.resize(std::max(kBlockSamples / channels, std::size_t(1)) * channels);
}

std::size_t MonoReader::read(std::span<float> mono) {
    const auto channels = static_cast<std::size_t>(mWav.channels());
    std::size_t done = 0;
    while (done < mono.size()) {
        const std::size_t wanted = std::min(mono.size() - done, mBlock.size() / channels);
        const std::size_t frames = mWav.read(std::span(mBlock).first(wanted * channels));
        if (frames == 0) {
            break;
        }
        mix(mono.subspan(done, frames));
        done += frames;
    }
    return done;
}

void MonoReader::mix(std::span<float> mono) const {
    const auto channels = static_cast<std::size_t>(mWav.channels());
    const float* frame = mBlock.data();
    if (mChannel != Channel::Sum) {
        frame += mChannel == Channel::Left ? 0 : 1;
        for (float& sample : mono) {
            sample = *frame;
            frame += channels;
        }
        return;
    }
    const float share = 1.0F / static_cast<float>(channels);
    for (float& sample : mono) {
        sample = std::accumulate(frame, frame + channels, 0.0F) * share;
        frame += channels;
    }
}
