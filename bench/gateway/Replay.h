#pragma once

#include "bench/gateway/CanFrame.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

class Subscriptions;

struct ReplaySettings {
    // Of the recording's own pace.
    double speed = 1.0;
    // Forwarded frames a second instead of the recording's own pace; 0: no pace, all are due at once.
    std::optional<double> framesPerSecond;
    int framesPerDatagram = 100;
    // The longest that a frame waits for others to share its datagram.
    int collectMs = 50;
    bool loop = false;
};

// Which frames of a recording go into which datagram, and when.
//
//     Replay replay(recording, settings);
//     for (auto frames = replay.take(clock.us(), wanted); !frames.empty(); frames = replay.take(clock.us(), wanted))
//         send(frames);
//     if (const auto due = replay.dueUs())
//         callAgainAt(*due);
//
// The clock is the caller's, in microseconds from the replay's beginning, and what goes into a datagram does not depend
// on how late take() is called. Frames keep the times they have in the recording, whatever the pace; at each repetition
// these go on rising. What is not wanted any more when a datagram is finished is not in it.
class Replay {
public:
    // The recording must outlive the replay.
    Replay(const Recording& recording, const ReplaySettings& settings);

    // The frames of the next datagram that is due; empty if none is.
    std::vector<CanFrame> take(std::int64_t nowUs, const Subscriptions& wanted);

    // When take(), which has just given nothing, will give something at the earliest; nothing if it will not until
    // something else is wanted.
    std::optional<std::int64_t> dueUs() const { return mDueUs; }

private:
    struct Position {
        std::int64_t pass = 0;
        std::size_t frame = 0;
        // A frame that answers whatever is asked for goes out once for each thing asked for.
        std::size_t copy = 0;
    };
    struct Next {
        CanFrame frame;
        std::int64_t dueUs;
        bool wanted;
    };

    std::optional<Next> next(const Subscriptions& wanted);
    bool skipUnwanted(const Subscriptions& wanted);
    CanFrame current(const Subscriptions& wanted) const;
    void advance(const Subscriptions& wanted);
    bool isOver() const { return mPosition.frame >= mRecording.frames.size(); }
    bool isFull() const { return mBatch.size() >= std::size_t(mSettings.framesPerDatagram); }
    // False if the frame is too late for the datagram that is being collected.
    bool fits(const Next& next) const;
    std::vector<CanFrame> finishBatch();

    const Recording& mRecording;
    ReplaySettings mSettings;
    Position mPosition;
    std::int64_t mForwarded = 0;
    std::vector<CanFrame> mBatch;
    std::int64_t mDeadlineUs = 0;
    std::optional<std::int64_t> mDueUs;
};
