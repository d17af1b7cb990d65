#include "bench/signal/ChannelMeter.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr std::int64_t kShortestClipping = 3;

}  // namespace

ChannelMeter::ChannelMeter(int sampleRate, double fullScale)
    : mFullScale(fullScale), mShortestDropout(sampleRate / 100 + 1), mShortestFreeze(sampleRate / 10 + 1) {}

void ChannelMeter::add(std::span<const double> samples) {
    if (mCount == 0 && !samples.empty()) {
        mFirst = samples.front();
    }
    for (const double sample : samples) {
        ++mCount;
        const double difference = sample - mFirst;
        mSum += difference;
        mSumOfSquares += difference * difference;

        mSameRun = sample == mPrevious ? mSameRun + 1 : 1;
        mPrevious = sample;
        if (sample == 0) {
            note(mDropouts, mSameRun, mShortestDropout);
        } else {
            note(mFrozen, mSameRun, mShortestFreeze);
        }

        mFullScaleRun = std::abs(sample) >= mFullScale ? mFullScaleRun + 1 : 0;
        note(mClipped, mFullScaleRun, kShortestClipping);
    }
}

void ChannelMeter::note(Places& places, std::int64_t run, std::int64_t shortest) const {
    if (run < shortest) {
        return;
    }
    if (run == shortest) {
        ++places.count;
    }
    if (run > places.longest) {
        places.longest = run;
        places.longestStart = mCount - run;
    }
}

double ChannelMeter::rms() const {
    if (mCount == 0) {
        return 0;
    }
    const auto count = static_cast<double>(mCount);
    const double mean = mSum / count;
    return std::sqrt(std::max(mSumOfSquares / count - mean * mean, 0.0));
}

double ChannelMeter::dc() const {
    return mCount == 0 ? 0 : mFirst + mSum / static_cast<double>(mCount);
}
