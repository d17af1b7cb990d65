#pragma once

#include <cstddef>
#include <kissfft/kiss_fftr.h>
#include <memory>
#include <span>
#include <vector>

// Power spectrum of one frame under a periodic Hann window.
//
// A window changes what a spectrum reads, and there are two corrections that exclude each other: the peak correction
// (divide by the coherent gain, 0.5 for Hann) makes the highest bin read a sine's level, but only if the sine lies on
// the bin, up to 1.42 dB too little between two; the band correction (divide by the mean square of the window, 0.375)
// makes the sum over bins read the power between them. The two differ by the equivalent noise bandwidth, 1.5 bins for
// Hann. Here the band correction is used and nothing else: a bin holds the mean square that it adds to a band, and a
// component's level is the sum over its bins. That holds for sines on and between bins (to 0.01 dB over the five
// nearest bins), and also where a changing speed spreads an order over more bins, which a peak correction misreads.
//
// Source of gain and bandwidth: "On the use of windows for harmonic analysis with the discrete Fourier transform",
// Proceedings of the IEEE 66(1), January 1978, section IV and table I.
class HannSpectrum {
public:
    // `size` is even.
    explicit HannSpectrum(int size);

    std::size_t size() const { return mWindow.size(); }
    // size / 2 + 1, from DC to half the sample rate.
    std::size_t bins() const { return mSpectrum.size(); }

    // Writes bins() mean squares, full scale 1.0, of size() samples.
    void compute(std::span<const float> samples, std::span<float> power);

private:
    struct Free {
        void operator()(kiss_fftr_cfg plan) const { kiss_fftr_free(plan); }
    };

    std::unique_ptr<kiss_fftr_state, Free> mPlan;
    std::vector<float> mWindow;  // scaled so that the squares of the spectrum need no further correction
    std::vector<float> mWindowed;
    std::vector<kiss_fft_cpx> mSpectrum;
};
