#include "bench/signal/PeakFinder.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace {

const float kProminence = std::pow(10.0F, 0.6F);  // 6 dB
constexpr float kFoot = 2;                        // 3 dB
constexpr float kValley = 2;                      // 3 dB
// A Hann window spreads a sine over the bins up to two away from the highest.
constexpr std::ptrdiff_t kLobe = 2;
// -140 dB: below this there is only the rounding of the transform itself.
constexpr double kFaintest = 1e-14;

constexpr std::size_t kNarrowestNeighbourhood = 16;
constexpr std::size_t kNeighbourhoodShare = 10;

std::size_t neighbourhoodOf(std::size_t bin) {
    return std::max(kNarrowestNeighbourhood, bin / kNeighbourhoodShare);
}

float medianAround(std::span<const float> power, std::size_t bin, std::vector<float>& scratch) {
    const std::size_t reach = neighbourhoodOf(bin);
    const std::size_t first = bin < reach ? 0 : bin - reach;
    const std::size_t end = std::min(bin + reach + 1, power.size());
    scratch.assign(power.begin() + static_cast<std::ptrdiff_t>(first),
                   power.begin() + static_cast<std::ptrdiff_t>(end));
    const auto middle = scratch.begin() + static_cast<std::ptrdiff_t>(scratch.size() / 2);
    std::nth_element(scratch.begin(), middle, scratch.end());
    return *middle;
}

// The median of every bin's neighbourhood: exact twice per neighbourhood's reach, straight lines between.
std::vector<float> floorOf(std::span<const float> power) {
    std::vector<float> floor(power.size());
    std::vector<float> scratch;
    std::size_t bin = 0;
    floor[0] = medianAround(power, 0, scratch);
    while (bin + 1 < power.size()) {
        const std::size_t next = std::min(bin + neighbourhoodOf(bin) / 2, power.size() - 1);
        floor[next] = medianAround(power, next, scratch);
        for (std::size_t between = bin + 1; between < next; ++between) {
            const auto share = static_cast<float>(between - bin) / static_cast<float>(next - bin);
            floor[between] = floor[bin] + share * (floor[next] - floor[bin]);
        }
        bin = next;
    }
    return floor;
}

class Finder {
public:
    Finder(std::span<const float> power, double binWidth)
        : mPower(power), mBinWidth(binWidth), mFloor(floorOf(power)), mTaken(power.size(), false) {}

    std::vector<Peak> run() {
        std::vector<Peak> peaks;
        for (const std::size_t summit : summits()) {
            if (mTaken[summit]) {
                continue;
            }
            const std::size_t first = reach(summit, -1);
            const std::size_t last = reach(summit, +1);
            std::fill(mTaken.begin() + static_cast<std::ptrdiff_t>(first),
                      mTaken.begin() + static_cast<std::ptrdiff_t>(last) + 1, true);
            const Peak peak = measure(first, last);
            if (peak.meanSquare > kFaintest) {
                peaks.push_back(peak);
            }
        }
        std::ranges::sort(peaks, {}, &Peak::frequency);
        return peaks;
    }

private:
    // Local maxima that stand out, the highest first. DC and what the window makes of it is none.
    std::vector<std::size_t> summits() const {
        std::vector<std::size_t> found;
        for (std::size_t bin = kLobe; bin + 1 < mPower.size(); ++bin) {
            if (mPower[bin] >= kProminence * mFloor[bin] && mPower[bin] > mPower[bin - 1] &&
                mPower[bin] >= mPower[bin + 1]) {
                found.push_back(bin);
            }
        }
        std::ranges::sort(found, std::ranges::greater(), [this](std::size_t bin) { return mPower[bin]; });
        return found;
    }

    // The last bin of the component in this direction.
    std::size_t reach(std::size_t summit, std::ptrdiff_t direction) const {
        const auto start = static_cast<std::ptrdiff_t>(summit);
        const auto size = static_cast<std::ptrdiff_t>(mPower.size());
        std::ptrdiff_t lowest = start;
        std::ptrdiff_t last = start;
        for (std::ptrdiff_t bin = start + direction; bin >= 0 && bin < size; bin += direction) {
            const auto index = static_cast<std::size_t>(bin);
            const bool inFoot = std::abs(bin - start) > kLobe && mPower[index] < kFoot * mFloor[index];
            if (mTaken[index] || inFoot) {
                break;
            }
            if (mPower[index] < mPower[static_cast<std::size_t>(lowest)]) {
                lowest = bin;
            } else if (mPower[index] > kValley * mPower[static_cast<std::size_t>(lowest)]) {
                return static_cast<std::size_t>(lowest);
            }
            last = bin;
        }
        return static_cast<std::size_t>(last);
    }

    Peak measure(std::size_t first, std::size_t last) const {
        double sum = 0;
        double moment = 0;
        for (std::size_t bin = first; bin <= last; ++bin) {
            const double above = static_cast<double>(mPower[bin]) - mFloor[bin];
            sum += above;
            moment += above * static_cast<double>(bin);
        }
        return {sum > 0 ? moment / sum * mBinWidth : 0, sum};
    }

    std::span<const float> mPower;
    double mBinWidth;
    std::vector<float> mFloor;
    std::vector<bool> mTaken;
};

}  // namespace

std::vector<Peak> findPeaks(std::span<const float> power, double binWidth) {
    return Finder(power, binWidth).run();
}
