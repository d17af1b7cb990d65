#pragma once

#include "bench/signal/HannSpectrum.h"
#include "bench/signal/MonoReader.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

// Spectra of some consecutive frames, kept.
struct StoredSpectra {
    std::size_t bins = 0;
    double binWidth = 0;          // Hz
    double frameStep = 0;         // s
    std::vector<double> centres;  // s, one for each frame
    std::vector<float> power;     // frame by frame

    std::size_t frames() const { return centres.size(); }
    std::span<const float> frame(std::size_t index) const { return std::span(power).subspan(index * bins, bins); }
};

// A recording as frames of one FFT size that overlap by 75 %. Only whole frames count; a frame's time is its centre.
class FrameSpectra {
public:
    // `reader` must outlive this. `fftSize` is a multiple of 4.
    FrameSpectra(MonoReader& reader, int fftSize);

    std::size_t bins() const { return mSpectrum.bins(); }
    double binWidth() const {
        return static_cast<double>(mReader.sampleRate()) / static_cast<double>(mSpectrum.size());
    }
    double frameStep() const { return static_cast<double>(mStep) / mReader.sampleRate(); }
    double centre(std::int64_t frame) const;
    // As far as the file's header tells.
    std::int64_t frames() const;

    // Computes the frames from `first` up to, not including, `end` or the end of the recording.
    using Visitor = std::function<void(std::int64_t frame, std::span<const float> power)>;
    void visit(std::int64_t first, std::int64_t end, const Visitor& visitor);
    StoredSpectra store(std::int64_t first, std::int64_t end);

private:
    MonoReader& mReader;
    HannSpectrum mSpectrum;
    std::size_t mStep;
};
