#pragma once

#include <cstdint>
#include <span>

// What one microphone's channel gives away about its state, gathered block by block: level, DC, and the places where
// it was overloaded, silent or frozen. Levels are relative to a full scale of 1.0.
class ChannelMeter {
public:
    // Places of one kind in the recording; positions and lengths in samples.
    struct Places {
        std::int64_t count = 0;
        std::int64_t longest = 0;
        std::int64_t longestStart = 0;
    };

    // `fullScale` is the magnitude from which a sample counts as overloaded.
    ChannelMeter(int sampleRate, double fullScale);

    void add(std::span<const double> samples);

    // Root mean square of what remains when the mean is taken off; 0 before the first sample.
    double rms() const;
    // The mean.
    double dc() const;

    // Three or more samples in a row at full scale, of either sign.
    const Places& clipped() const { return mClipped; }
    // Zeros for more than 10 ms.
    const Places& dropouts() const { return mDropouts; }
    // One other value for more than 100 ms, which no microphone that hears anything delivers.
    const Places& frozen() const { return mFrozen; }

private:
    void note(Places& places, std::int64_t run, std::int64_t shortest) const;

    double mFullScale;
    std::int64_t mShortestDropout;
    std::int64_t mShortestFreeze;

    std::int64_t mCount = 0;
    // Sums are taken of differences to the first sample: a constant then has an RMS of exactly 0, however large it is.
    double mFirst = 0;
    double mSum = 0;
    double mSumOfSquares = 0;

    double mPrevious = 0;
    std::int64_t mSameRun = 0;
    std::int64_t mFullScaleRun = 0;
    Places mClipped;
    Places mDropouts;
    Places mFrozen;
};
