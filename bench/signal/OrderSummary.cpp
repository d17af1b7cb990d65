#include "bench/signal/OrderSummary.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace {

constexpr std::size_t kMostComponents = 8;  // of each kind
constexpr std::size_t kMostTries = 200;
// What is found at fewer speeds is a chance peak of the noise.
constexpr double kLeastShare = 0.5;
// Coarser than this, neighbouring orders cannot be told apart.
constexpr double kCoarsestOrder = 0.5;
// The speed log's share in an order's uncertainty. More than a few bins would let in chance peaks of the noise.
constexpr double kSpeedError = 0.002;
constexpr double kMostBinsOff = 2;

struct Candidate {
    std::size_t bin;
    SpectrumLine line;
    bool used = false;
};

class Sorter {
public:
    explicit Sorter(const OrderAnalysis& analysis) : mBins(analysis.bins), mBinWidth(analysis.binWidth) {
        for (std::size_t bin = 0; bin < mBins.size(); ++bin) {
            for (const SpectrumLine& line : mBins[bin].lines) {
                mCandidates.push_back({bin, line});
            }
            mAnyFineBin = mAnyFineBin || tolerance(&SpectrumLine::order, bin, 0).has_value();
        }
        std::ranges::stable_sort(mCandidates, std::ranges::greater(),
                                 [](const Candidate& candidate) { return candidate.line.level; });
    }

    OrderSummary run() {
        OrderSummary summary;
        std::size_t tries = 0;
        for (const Candidate& seed : mCandidates) {
            if (seed.used || isTooCoarse(seed)) {
                continue;
            }
            if (++tries > kMostTries) {
                break;
            }
            const Family order = familyOf(seed, &SpectrumLine::order);
            const Family tone = familyOf(seed, &SpectrumLine::frequency);
            const bool isOrder = seed.line.order > 0 && order.component.bins >= tone.component.bins;
            const Family& family = isOrder ? order : tone;
            if (static_cast<double>(family.component.bins) < kLeastShare * static_cast<double>(family.possibleBins)) {
                continue;
            }
            for (const std::size_t member : family.members) {
                mCandidates[member].used = true;
            }
            std::vector<Component>& components = isOrder ? summary.orders : summary.tones;
            if (components.size() < kMostComponents) {
                components.push_back(family.component);
            }
        }
        std::ranges::sort(summary.orders, std::ranges::greater(), &Component::level);
        std::ranges::sort(summary.tones, std::ranges::greater(), &Component::level);
        return summary;
    }

private:
    struct Family {
        Component component;
        std::size_t possibleBins = 0;
        std::vector<std::size_t> members;
    };
    using Key = double SpectrumLine::*;

    // How far a line's order or frequency may be from the family's at this bin's speed; nothing if the spectrum is too
    // coarse there.
    std::optional<double> tolerance(Key key, std::size_t bin, double value) const {
        if (key == &SpectrumLine::frequency) {
            return mBinWidth;
        }
        const double oneBin = mBinWidth * 60 / mBins[bin].rpm;
        if (oneBin > kCoarsestOrder) {
            return std::nullopt;
        }
        return std::clamp(kSpeedError * value, oneBin, kMostBinsOff * oneBin);
    }

    // At low speeds close orders run together into one strong line that belongs to none of them.
    bool isTooCoarse(const Candidate& candidate) const {
        return mAnyFineBin && !tolerance(&SpectrumLine::order, candidate.bin, 0);
    }

    // All unused lines of the seed's order or frequency. The seed's own may be off by as much as a bin at its speed, so
    // the lines are gathered again around their common value.
    Family familyOf(const Candidate& seed, Key key) const {
        const Family first = gather(seed.line.*key, key);
        Family family = first.members.empty() ? first : gather(first.component.value, key);
        for (std::size_t bin = 0; bin < mBins.size(); ++bin) {
            family.possibleBins += tolerance(key, bin, 0) ? 1 : 0;
        }
        return family;
    }

    Family gather(double value, Key key) const {
        Family family;
        std::vector<bool> found(mBins.size(), false);
        double sum = 0;
        double weights = 0;
        for (std::size_t index = 0; index < mCandidates.size(); ++index) {
            const Candidate& candidate = mCandidates[index];
            const std::optional<double> allowed = tolerance(key, candidate.bin, value);
            if (candidate.used || !allowed || std::abs(candidate.line.*key - value) > *allowed) {
                continue;
            }
            if (family.members.empty()) {
                family.component.level = candidate.line.level;
                family.component.rpm = mBins[candidate.bin].rpm;
            }
            family.members.push_back(index);
            found[candidate.bin] = true;
            sum += candidate.line.*key / *allowed;
            weights += 1 / *allowed;
        }
        family.component.value = weights > 0 ? sum / weights : value;
        family.component.bins = static_cast<std::size_t>(std::ranges::count(found, true));
        return family;
    }

    const std::vector<RpmBinLines>& mBins;
    double mBinWidth;
    bool mAnyFineBin = false;            // whether orders can be told apart at any speed
    std::vector<Candidate> mCandidates;  // strongest first
};

}  // namespace

OrderSummary OrderSummary::of(const OrderAnalysis& analysis) {
    return Sorter(analysis).run();
}
