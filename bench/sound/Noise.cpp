#include "bench/sound/Noise.h"

#include "bench/sound/Cabin.h"

#include <cmath>
#include <numbers>
#include <utility>

namespace {

struct Angle {
    double cosine;
    double alpha;
};

Angle angleOf(double frequency, double q) {
    const double w = 2.0 * std::numbers::pi * frequency / kCabinRate;
    return {std::cos(w), std::sin(w) / (2.0 * q)};
}

// The mixing function of SplitMix64 (Steele, Lea and Flood 2014): spreads neighbouring seeds over the whole range.
std::uint64_t mixed(std::uint64_t z) {
    z += 0x9E3779B97F4A7C15ULL;
    z = (z ^ (z >> 30U)) * 0xBF58476D1CE4E5B9ULL;
    z = (z ^ (z >> 27U)) * 0x94D049BB133111EBULL;
    return z ^ (z >> 31U);
}

}  // namespace

Biquad::Biquad(double b0, double b1, double b2, double a0, double a1, double a2)
    : mB0(b0 / a0), mB1(b1 / a0), mB2(b2 / a0), mA1(a1 / a0), mA2(a2 / a0) {}

Biquad Biquad::lowPass(double frequency, double q) {
    const auto [c, alpha] = angleOf(frequency, q);
    return {(1 - c) / 2, 1 - c, (1 - c) / 2, 1 + alpha, -2 * c, 1 - alpha};
}

Biquad Biquad::highPass(double frequency, double q) {
    const auto [c, alpha] = angleOf(frequency, q);
    return {(1 + c) / 2, -(1 + c), (1 + c) / 2, 1 + alpha, -2 * c, 1 - alpha};
}

Biquad Biquad::peak(double frequency, double q, double gainDb) {
    const auto [c, alpha] = angleOf(frequency, q);
    const double a = std::pow(10.0, gainDb / 40.0);
    return {1 + alpha * a, -2 * c, 1 - alpha * a, 1 + alpha / a, -2 * c, 1 - alpha / a};
}

ShapedNoise::ShapedNoise(std::vector<Biquad> filters, std::uint64_t seed, std::uint64_t stream)
    : mFilters(std::move(filters)), mState(mixed(mixed(seed) + stream)) {
    // Noise of variance 1 leaves a filter with the energy of its impulse response as its variance (Parseval).
    double energy = 0.0;
    for (int sample = 0; sample < kCabinRate / 4; ++sample) {
        double y = sample == 0 ? 1.0 : 0.0;
        for (Biquad& filter : mFilters)
            y = filter.next(y);
        energy += y * y;
    }
    for (Biquad& filter : mFilters)
        filter.reset();
    mScale = 1.0 / std::sqrt(energy);
}

double ShapedNoise::next() {
    mState += 0x9E3779B97F4A7C15ULL;
    // The upper 53 bits as a number from [-sqrt(3), sqrt(3)), whose variance is 1.
    const double unit = double(mixed(mState) >> 11U) * 0x1.0p-53;
    double y = (2.0 * unit - 1.0) * std::numbers::sqrt3 * mScale;
    for (Biquad& filter : mFilters)
        y = filter.next(y);
    return y;
}
