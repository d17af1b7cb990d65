#include "bench/signal/OrderAnalysis.h"

#include "bench/signal/FrameSpectra.h"

#include <algorithm>
#include <limits>
#include <span>

namespace {

constexpr double kStretch = 60;  // s
constexpr std::int64_t kToTheEnd = std::numeric_limits<std::int64_t>::max();

// Sorts frames by their speed, and all of them into the one bin that counts when none has any.
class Averages {
public:
    Averages(const std::optional<RpmLog>& log, int offset) : mLog(log), mOffset(offset / 1000.0) {}

    void add(double centre, std::span<const float> power) {
        ++mFrames;
        mOverall.add(0, power);
        const std::optional<double> rpm = mLog ? mLog->rpmAt(centre + mOffset) : std::nullopt;
        if (rpm && *rpm >= kLeastRpm) {
            ++mFramesInOrders;
            mByRpm.add(*rpm, power);
        }
    }

    void report(OrderAnalysis& analysis) const {
        analysis.frames = mFrames;
        analysis.framesInOrders = mFramesInOrders;
        analysis.meanSquare = mOverall.meanSquare();
        analysis.bins = (mByRpm.isEmpty() ? mOverall : mByRpm).lines(analysis.binWidth);
    }

private:
    const std::optional<RpmLog>& mLog;
    double mOffset;
    std::int64_t mFrames = 0;
    std::int64_t mFramesInOrders = 0;
    RpmBins mOverall;
    RpmBins mByRpm;
};

}  // namespace

OrderAnalysis analyseOrders(MonoReader& reader, const std::optional<RpmLog>& log, int fftSize) {
    FrameSpectra spectra(reader, fftSize);
    OrderAnalysis analysis;
    analysis.binWidth = spectra.binWidth();

    std::int64_t first = 0;
    StoredSpectra stored;
    if (log) {
        const auto length = static_cast<std::int64_t>(kStretch / spectra.frameStep());
        const auto liveliest = static_cast<std::int64_t>(log->liveliestStretch(kStretch) / spectra.frameStep());
        first = std::clamp<std::int64_t>(liveliest, 0, std::max<std::int64_t>(spectra.frames() - length, 0));
        stored = spectra.store(first, first + length);
        analysis.offset = estimateOffset(stored, *log);
    }

    Averages averages(log, analysis.offset ? analysis.offset->milliseconds : 0);
    const auto add = [&](std::int64_t frame, std::span<const float> power) {
        averages.add(spectra.centre(frame), power);
    };
    spectra.visit(0, first, add);
    for (std::size_t frame = 0; frame < stored.frames(); ++frame) {
        averages.add(stored.centres[frame], stored.frame(frame));
    }
    spectra.visit(first + static_cast<std::int64_t>(stored.frames()), kToTheEnd, add);
    averages.report(analysis);
    return analysis;
}
