#include "bench/signal/OffsetEstimate.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <numeric>
#include <optional>
#include <vector>

namespace {

constexpr int kStep = 10;      // ms
constexpr int kLargest = 300;  // ms
constexpr std::size_t kShifts = 2 * kLargest / kStep + 1;

constexpr double kLeastChange = 100;      // RPM/s
constexpr double kLeastDuration = 1;      // s
constexpr double kLeastContrast = 1;      // dB
constexpr std::size_t kMostFrames = 250;  // more do not sharpen the result, only take time

constexpr double kFirstOrder = 1;
constexpr double kLastOrder = 120;
constexpr double kOrderStep = 0.05;
constexpr auto kOrders = static_cast<std::size_t>((kLastOrder - kFirstOrder) / kOrderStep) + 1;
// How many orders count as the strongest, and how far apart two must be to be two.
constexpr std::size_t kStrongest = 4;
constexpr auto kApart = static_cast<std::size_t>(0.5 / kOrderStep);

constexpr int shiftAt(std::size_t index) {
    return static_cast<int>(index) * kStep - kLargest;
}

using ShiftedRpm = std::array<float, kShifts>;

// The speed of a frame under every offset; nothing if one of them leaves the log or if the speed hardly changes, so
// that all offsets are judged by the same frames.
std::optional<ShiftedRpm> shiftedRpm(const RpmLog& log, double centre) {
    ShiftedRpm rpm{};
    for (std::size_t shift = 0; shift < kShifts; ++shift) {
        const std::optional<double> speed = log.rpmAt(centre + shiftAt(shift) / 1000.0);
        if (!speed || *speed < kLeastRpm) {
            return std::nullopt;
        }
        rpm[shift] = static_cast<float>(*speed);
    }
    if (std::abs(rpm.back() - rpm.front()) < kLeastChange * 2 * kLargest / 1000) {
        return std::nullopt;
    }
    return rpm;
}

class Search {
public:
    Search(const StoredSpectra& spectra, const RpmLog& log) : mBins(spectra.bins), mBinWidth(spectra.binWidth) {
        std::vector<std::size_t> frames;
        std::vector<ShiftedRpm> speeds;
        for (std::size_t frame = 0; frame < spectra.frames(); ++frame) {
            if (const std::optional<ShiftedRpm> rpm = shiftedRpm(log, spectra.centres[frame])) {
                frames.push_back(frame);
                speeds.push_back(*rpm);
            }
        }
        mDuration = static_cast<double>(frames.size()) * spectra.frameStep;
        const std::size_t chosen = std::min(frames.size(), kMostFrames);
        for (std::size_t index = 0; index < chosen; ++index) {
            const std::size_t source = index * frames.size() / chosen;
            mRpm.push_back(speeds[source]);
            addLogPower(spectra.frame(frames[source]));
        }
        centreLogPower();
    }

    // s
    double duration() const { return mDuration; }

    // Mean log power in dB along the strongest orders, if this offset is the true one.
    float score(std::size_t shift) const {
        std::vector<float> orders = orderSpectrum(shift);
        float sum = 0;
        for (std::size_t count = 0; count < kStrongest; ++count) {
            const auto strongest = std::ranges::max_element(orders);
            sum += *strongest;
            const auto position = static_cast<std::size_t>(strongest - orders.begin());
            const std::size_t first = position < kApart ? 0 : position - kApart;
            const std::size_t end = std::min(position + kApart + 1, orders.size());
            std::fill(orders.begin() + static_cast<std::ptrdiff_t>(first),
                      orders.begin() + static_cast<std::ptrdiff_t>(end), 0.0F);
        }
        return sum / kStrongest;
    }

private:
    void addLogPower(std::span<const float> power) {
        constexpr float kNothing = 1e-16F;
        for (const float value : power) {
            mLogPower.push_back(10 * std::log10(value + kNothing));
        }
    }

    // Takes off what each frequency has all the time (fixed tones, the colour of the noise) and what each frame has at
    // all frequencies (its loudness): what remains above 0 moves with the speed.
    void centreLogPower() {
        std::vector<float> perBin(mBins, 0.0F);
        for (std::size_t frame = 0; frame < mRpm.size(); ++frame) {
            const std::span<float> row = logPower(frame);
            const float mean = std::accumulate(row.begin(), row.end(), 0.0F) / static_cast<float>(mBins);
            for (std::size_t bin = 0; bin < mBins; ++bin) {
                row[bin] -= mean;
                perBin[bin] += row[bin] / static_cast<float>(mRpm.size());
            }
        }
        for (std::size_t frame = 0; frame < mRpm.size(); ++frame) {
            std::ranges::transform(logPower(frame), perBin, logPower(frame).begin(), std::minus());
        }
    }

    std::span<float> logPower(std::size_t frame) { return std::span(mLogPower).subspan(frame * mBins, mBins); }

    // Mean log power along each order; 0 where an order lies in the spectrum in less than half of the frames.
    std::vector<float> orderSpectrum(std::size_t shift) const {
        std::vector<float> sums(kOrders, 0.0F);
        std::vector<std::size_t> endsAt(kOrders + 1, 0);
        for (std::size_t frame = 0; frame < mRpm.size(); ++frame) {
            const float* row = mLogPower.data() + frame * mBins;
            const float binsPerOrder = mRpm[frame][shift] / 60 / static_cast<float>(mBinWidth);
            const float first = static_cast<float>(kFirstOrder) * binsPerOrder + 0.5F;
            const float step = static_cast<float>(kOrderStep) * binsPerOrder;
            const float inside = (static_cast<float>(mBins) - 1 - first) / step;
            const std::size_t end = inside < 0 ? 0 : std::min(static_cast<std::size_t>(inside), kOrders);
            for (std::size_t order = 0; order < end; ++order) {
                sums[order] += row[static_cast<int>(first + static_cast<float>(order) * step)];
            }
            ++endsAt[end];
        }
        std::size_t frames = mRpm.size();
        for (std::size_t order = 0; order < kOrders; ++order) {
            frames -= endsAt[order];
            sums[order] = 2 * frames < mRpm.size() ? 0.0F : sums[order] / static_cast<float>(frames);
        }
        return sums;
    }

    std::size_t mBins;
    double mBinWidth;
    double mDuration = 0;
    std::vector<ShiftedRpm> mRpm;  // one for each frame looked at
    std::vector<float> mLogPower;  // dB, frame by frame
};

}  // namespace

OffsetEstimate estimateOffset(const StoredSpectra& spectra, const RpmLog& log) {
    const Search search(spectra, log);
    OffsetEstimate estimate;
    if (search.duration() < kLeastDuration) {
        return estimate;
    }
    std::array<float, kShifts> scores{};
    for (std::size_t shift = 0; shift < kShifts; ++shift) {
        scores[shift] = search.score(shift);
    }
    const std::size_t best = static_cast<std::size_t>(std::ranges::max_element(scores) - scores.begin());
    std::array<float, kShifts> sorted = scores;
    std::ranges::sort(sorted);
    estimate.contrast = scores[best] - sorted[kShifts / 2];
    const bool clear = estimate.contrast >= kLeastContrast;
    estimate.outcome = clear ? OffsetEstimate::Outcome::Found : OffsetEstimate::Outcome::NoClearOrders;
    estimate.milliseconds = clear ? shiftAt(best) : 0;
    return estimate;
}
