#include "bench/signal/HannSpectrum.h"

#include <cmath>
#include <numbers>

namespace {

constexpr double kHannMeanSquare = 0.375;

}  // namespace

HannSpectrum::HannSpectrum(int size)
    : mPlan(kiss_fftr_alloc(size, 0, nullptr, nullptr)),
      mWindow(static_cast<std::size_t>(size)),
      mWindowed(mWindow.size()),
      mSpectrum(mWindow.size() / 2 + 1) {
    // A real signal's power lies half in the bins that are computed, half in their mirror images: hence the 2.
    const double scale = std::sqrt(2.0 / kHannMeanSquare) / size;
    for (int index = 0; index < size; ++index) {
        const double hann = 0.5 - 0.5 * std::cos(2 * std::numbers::pi * index / size);
        mWindow[static_cast<std::size_t>(index)] = static_cast<float>(scale * hann);
    }
}

void HannSpectrum::compute(std::span<const float> samples, std::span<float> power) {
    for (std::size_t index = 0; index < mWindow.size(); ++index) {
        mWindowed[index] = samples[index] * mWindow[index];
    }
    kiss_fftr(mPlan.get(), mWindowed.data(), mSpectrum.data());
    for (std::size_t bin = 0; bin < mSpectrum.size(); ++bin) {
        power[bin] = mSpectrum[bin].r * mSpectrum[bin].r + mSpectrum[bin].i * mSpectrum[bin].i;
    }
    // These two have no mirror image.
    power.front() /= 2;
    power[mSpectrum.size() - 1] /= 2;
}
