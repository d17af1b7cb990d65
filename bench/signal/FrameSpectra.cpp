#include "bench/signal/FrameSpectra.h"

#include <algorithm>

FrameSpectra::FrameSpectra(MonoReader& reader, int fftSize)
    : mReader(reader), mSpectrum(fftSize), mStep(mSpectrum.size() / 4) {}

double FrameSpectra::centre(std::int64_t frame) const {
    const auto step = static_cast<std::int64_t>(mStep);
    return static_cast<double>((frame + 2) * step) / mReader.sampleRate();
}

std::int64_t FrameSpectra::frames() const {
    const auto size = static_cast<std::int64_t>(mSpectrum.size());
    return mReader.samples() < size ? 0 : (mReader.samples() - size) / static_cast<std::int64_t>(mStep) + 1;
}

void FrameSpectra::visit(std::int64_t first, std::int64_t end, const Visitor& visitor) {
    if (first >= end || !mReader.seek(first * static_cast<std::int64_t>(mStep))) {
        return;
    }
    std::vector<float> samples(mSpectrum.size());
    std::vector<float> power(mSpectrum.bins());
    std::span<float> fresh(samples);
    for (std::int64_t frame = first; frame < end; ++frame) {
        if (mReader.read(fresh) < fresh.size()) {
            return;
        }
        mSpectrum.compute(samples, power);
        visitor(frame, power);
        std::copy(samples.begin() + static_cast<std::ptrdiff_t>(mStep), samples.end(), samples.begin());
        fresh = std::span(samples).last(mStep);
    }
}

StoredSpectra FrameSpectra::store(std::int64_t first, std::int64_t end) {
    StoredSpectra stored{bins(), binWidth(), frameStep(), {}, {}};
    const auto expected = static_cast<std::size_t>(std::max<std::int64_t>(std::min(end, frames()) - first, 0));
    stored.centres.reserve(expected);
    stored.power.reserve(expected * bins());
    visit(first, end, [&](std::int64_t frame, std::span<const float> power) {
        stored.centres.push_back(centre(frame));
        stored.power.insert(stored.power.end(), power.begin(), power.end());
    });
    return stored;
}
