#include "bench/gateway/Replay.h"

#include "bench/gateway/Subscriptions.h"

#include <algorithm>
#include <utility>

namespace {

// What the 16 bits of a frame's time in its datagram can say.
constexpr std::int64_t kMostOffsetMs = 65'535;

}  // namespace

Replay::Replay(const Recording& recording, const ReplaySettings& settings)
    : mRecording(recording), mSettings(settings) {}

std::vector<CanFrame> Replay::take(std::int64_t nowUs, const Subscriptions& wanted) {
    mDueUs.reset();
    std::erase_if(mBatch, [&wanted](const CanFrame& frame) { return !wanted.wants(frame.address); });
    while (const auto coming = next(wanted)) {
        if (coming->dueUs > nowUs) {
            if (!mBatch.empty() && nowUs >= mDeadlineUs)
                return finishBatch();
            mDueUs = mBatch.empty() ? coming->dueUs : std::min(coming->dueUs, mDeadlineUs);
            return {};
        }
        if (!fits(*coming))
            return finishBatch();
        advance(wanted);
        if (!coming->wanted)
            continue;
        if (mBatch.empty())
            mDeadlineUs = coming->dueUs + std::int64_t(mSettings.collectMs) * 1000;
        mBatch.push_back(coming->frame);
        ++mForwarded;
        if (isFull())
            return finishBatch();
    }
    return finishBatch();
}

std::optional<Replay::Next> Replay::next(const Subscriptions& wanted) {
    if (wanted.empty() || isOver())
        return std::nullopt;
    if (mSettings.framesPerSecond) {
        // Only what is forwarded takes time, so that the rate is what arrives.
        if (!skipUnwanted(wanted))
            return std::nullopt;
        const double rate = *mSettings.framesPerSecond;
        return Next{current(wanted), rate > 0.0 ? std::int64_t(double(mForwarded) / rate * 1e6) : 0, true};
    }
    const CanFrame frame = current(wanted);
    return Next{frame, std::int64_t(double(frame.us) / mSettings.speed), wanted.wants(frame.address)};
}

// False, and nothing skipped, if there is nothing wanted from here to the end or, repeated, in all of it.
bool Replay::skipUnwanted(const Subscriptions& wanted) {
    const Position before = mPosition;
    for (std::size_t skipped = 0; skipped <= mRecording.frames.size() && !isOver(); ++skipped) {
        if (wanted.wants(current(wanted).address))
            return true;
        advance(wanted);
    }
    mPosition = before;
    return false;
}

CanFrame Replay::current(const Subscriptions& wanted) const {
    CanFrame frame = mRecording.frames[mPosition.frame];
    frame.us += mPosition.pass * mRecording.passUs;
    if (mRecording.asAskedFor)
        frame.address = wanted.at(std::min(mPosition.copy, wanted.count() - 1));
    return frame;
}

void Replay::advance(const Subscriptions& wanted) {
    if (mRecording.asAskedFor && ++mPosition.copy < wanted.count())
        return;
    mPosition.copy = 0;
    ++mPosition.frame;
    if (isOver() && mSettings.loop)
        mPosition = {mPosition.pass + 1, 0, 0};
}

bool Replay::fits(const Next& next) const {
    return mBatch.empty() ||
           (next.dueUs <= mDeadlineUs && next.frame.us / 1000 - mBatch.front().us / 1000 <= kMostOffsetMs);
}

std::vector<CanFrame> Replay::finishBatch() {
    return std::exchange(mBatch, {});
}
