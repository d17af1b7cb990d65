#include "bench/signal/WavReader.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

// 120 dB above full scale: beyond anything that a converter or a program means, far from overflowing a square.
constexpr double kLargestSample = 1e6;

template <class Sample>
void tame(std::span<Sample> samples) {
    constexpr auto limit = static_cast<Sample>(kLargestSample);
    for (Sample& sample : samples) {
        sample = std::isfinite(sample) ? std::clamp(sample, -limit, limit) : Sample(0);
    }
}

}  // namespace

std::optional<WavReader> WavReader::open(const std::string& path, std::string& error) {
    // libsndfile says "System error." where the system knows the reason.
    if (std::FILE* probe = std::fopen(path.c_str(), "rb")) {
        std::fclose(probe);
    } else {
        error = path + ": " + std::strerror(errno);
        return std::nullopt;
    }

    SF_INFO info{};
    SNDFILE* file = sf_open(path.c_str(), SFM_READ, &info);
    if (!file) {
        error = path + ": is no WAV file";
        return std::nullopt;
    }
    WavReader reader(file, info);
    const int container = info.format & SF_FORMAT_TYPEMASK;
    if (container != SF_FORMAT_WAV && container != SF_FORMAT_WAVEX && container != SF_FORMAT_RF64) {
        error = path + ": is no WAV file";
        return std::nullopt;
    }
    if (info.channels < 1 || info.samplerate < 1) {
        error = path + ": its header names no channels or no sample rate";
        return std::nullopt;
    }
    return reader;
}

bool WavReader::holdsFloats() const {
    const int encoding = mInfo.format & SF_FORMAT_SUBMASK;
    return encoding == SF_FORMAT_FLOAT || encoding == SF_FORMAT_DOUBLE;
}

double WavReader::fullScale() const {
    switch (mInfo.format & SF_FORMAT_SUBMASK) {
        case SF_FORMAT_PCM_U8:
            return 1.0 - std::ldexp(1.0, -7);
        case SF_FORMAT_PCM_16:
            return 1.0 - std::ldexp(1.0, -15);
        case SF_FORMAT_PCM_24:
            return 1.0 - std::ldexp(1.0, -23);
        case SF_FORMAT_PCM_32:
            return 1.0 - std::ldexp(1.0, -31);
        default:
            return 1.0;
    }
}

std::size_t WavReader::read(std::span<float> interleaved) {
    const auto wanted = static_cast<sf_count_t>(interleaved.size() / static_cast<std::size_t>(mInfo.channels));
    const sf_count_t frames = std::max<sf_count_t>(sf_readf_float(mFile.get(), interleaved.data(), wanted), 0);
    if (holdsFloats()) {
        tame(interleaved.first(static_cast<std::size_t>(frames * mInfo.channels)));
    }
    return static_cast<std::size_t>(frames);
}

std::size_t WavReader::read(std::span<double> interleaved) {
    const auto wanted = static_cast<sf_count_t>(interleaved.size() / static_cast<std::size_t>(mInfo.channels));
    const sf_count_t frames = std::max<sf_count_t>(sf_readf_double(mFile.get(), interleaved.data(), wanted), 0);
    if (holdsFloats()) {
        tame(interleaved.first(static_cast<std::size_t>(frames * mInfo.channels)));
    }
    return static_cast<std::size_t>(frames);
}

bool WavReader::seek(std::int64_t frame) {
    return sf_seek(mFile.get(), frame, SEEK_SET) == frame;
}
