#pragma once

#include "bench/signal/FrameSpectra.h"
#include "bench/signal/RpmLog.h"

// By how much the clock of the speed log differs from the recording's. The two start some tens of milliseconds apart,
// and 50 ms cost a high order several dB in a full-throttle ramp.
struct OffsetEstimate {
    enum class Outcome {
        Found,
        SpeedHardlyChanges,  // no offset would show
        NoClearOrders        // none shows
    };

    Outcome outcome = Outcome::SpeedHardlyChanges;
    // The log's time less the recording's for the same moment: positive if the log is late. 0 unless found.
    int milliseconds = 0;
    // By how many dB the found one beats the median of those tried.
    double contrast = 0;
};

// Tries offsets of up to 300 ms in steps of 10 ms and takes the one that gives the highest mean log power along the
// strongest orders. Only frames in which the speed changes by at least 100 RPM a second are looked at; at least one
// second of them is needed. Found means a contrast of at least 1 dB.
OffsetEstimate estimateOffset(const StoredSpectra& spectra, const RpmLog& log);
