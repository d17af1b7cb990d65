#include "bench/traces/SmoothCurve.h"

#include <algorithm>
#include <utility>

namespace {

// Slope at a point between a stretch of length h0 and slope d0 and the next of h1 and d1. Flat at a turning point.
double slopeBetween(double h0, double d0, double h1, double d1) {
    if (d0 * d1 <= 0.0)
        return 0.0;
    const double w0 = 2.0 * h1 + h0;
    const double w1 = h1 + 2.0 * h0;
    return (w0 + w1) / (w0 / d0 + w1 / d1);
}

}  // namespace

SmoothCurve::SmoothCurve(std::vector<double> times, std::vector<double> values)
    : mTimes(std::move(times)), mValues(std::move(values)), mSlopes(mTimes.size(), 0.0) {
    const auto length = [this](size_t i) { return mTimes[i + 1] - mTimes[i]; };
    const auto slope = [&](size_t i) { return (mValues[i + 1] - mValues[i]) / length(i); };
    const size_t last = mTimes.size() - 1;
    mSlopes.front() = slope(0);
    mSlopes.back() = slope(last - 1);
    for (size_t i = 1; i < last; ++i)
        mSlopes[i] = slopeBetween(length(i - 1), slope(i - 1), length(i), slope(i));
}

SmoothCurve::Moment SmoothCurve::at(double seconds) const {
    if (seconds <= mTimes.front())
        return {mValues.front(), 0.0};
    if (seconds >= mTimes.back())
        return {mValues.back(), 0.0};
    const auto after = std::upper_bound(mTimes.begin(), mTimes.end(), seconds);
    const auto i = size_t(after - mTimes.begin()) - 1;
    const double h = mTimes[i + 1] - mTimes[i];
    const double t = (seconds - mTimes[i]) / h;
    const double rise = mValues[i + 1] - mValues[i];
    // Hermite form, as a polynomial in t from 0 to 1.
    const double c1 = h * mSlopes[i];
    const double c2 = 3.0 * rise - h * (2.0 * mSlopes[i] + mSlopes[i + 1]);
    const double c3 = h * (mSlopes[i] + mSlopes[i + 1]) - 2.0 * rise;
    return {mValues[i] + t * (c1 + t * (c2 + t * c3)), (c1 + t * (2.0 * c2 + t * 3.0 * c3)) / h};
}
