#pragma once

#include <cstdint>
#include <vector>

// A second-order filter section, by the formulas of R. Bristow-Johnson's audio EQ cookbook (bilinear transform, so that
// the corner frequencies are exact). Frequencies in Hz at the cabin's sample rate.
class Biquad {
public:
    static Biquad lowPass(double frequency, double q);
    static Biquad highPass(double frequency, double q);
    // Raises (or lowers) a band by a level in dB.
    static Biquad peak(double frequency, double q, double gainDb);

    double next(double x) {
        const double y = mB0 * x + mS1;
        mS1 = mB1 * x - mA1 * y + mS2;
        mS2 = mB2 * x - mA2 * y;
        return y;
    }
    void reset() { mS1 = mS2 = 0.0; }

private:
    Biquad(double b0, double b1, double b2, double a0, double a1, double a2);

    double mB0, mB1, mB2, mA1, mA2;
    double mS1 = 0.0;
    double mS2 = 0.0;
};

// White noise sent through filters, scaled so that its RMS is 1 whatever the filters do. The same seed and stream give
// the same noise; different streams of a seed are independent.
class ShapedNoise {
public:
    ShapedNoise(std::vector<Biquad> filters, std::uint64_t seed, std::uint64_t stream);
    double next();

private:
    std::vector<Biquad> mFilters;
    std::uint64_t mState;
    double mScale = 1.0;
};
