#include "bench/signal/RpmBins.h"

#include "bench/signal/PeakFinder.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>

namespace {

constexpr double kBinWidth = 50;  // RPM
// A Hann window spreads DC over the first two bins.
constexpr std::ptrdiff_t kDcBins = 2;

}  // namespace

void RpmBins::add(double rpm, std::span<const float> power) {
    Bin& bin = mBins[static_cast<int>(std::floor(rpm / kBinWidth))];
    bin.powerSum.resize(power.size());
    ++bin.frames;
    bin.rpmSum += rpm;
    std::ranges::transform(power, bin.powerSum, bin.powerSum.begin(), std::plus());
}

std::vector<RpmBinLines> RpmBins::lines(double binWidth) const {
    std::vector<RpmBinLines> result;
    std::vector<float> mean;
    for (const auto& [number, bin] : mBins) {
        const auto frames = static_cast<float>(bin.frames);
        mean.assign(bin.powerSum.begin(), bin.powerSum.end());
        std::ranges::for_each(mean, [frames](float& power) { power /= frames; });

        RpmBinLines& entry = result.emplace_back();
        entry.rpm = bin.rpmSum / static_cast<double>(bin.frames);
        for (const Peak& peak : findPeaks(mean, binWidth)) {
            const double order = entry.rpm > 0 ? peak.frequency * 60 / entry.rpm : 0;
            entry.lines.push_back({peak.frequency, order, 10 * std::log10(peak.meanSquare)});
        }
        std::ranges::stable_sort(entry.lines, std::ranges::greater(), &SpectrumLine::level);
    }
    return result;
}

double RpmBins::meanSquare() const {
    double sum = 0;
    std::size_t frames = 0;
    for (const auto& [number, bin] : mBins) {
        sum += std::accumulate(bin.powerSum.begin() + kDcBins, bin.powerSum.end(), 0.0);
        frames += bin.frames;
    }
    return frames > 0 ? sum / static_cast<double>(frames) : 0;
}
