#pragma once

#include "bench/signal/MonoReader.h"
#include "bench/signal/OffsetEstimate.h"
#include "bench/signal/RpmBins.h"
#include "bench/signal/RpmLog.h"

#include <cstdint>
#include <optional>
#include <vector>

// What a recording says about the orders of the motor.
struct OrderAnalysis {
    double binWidth = 0;                   // Hz
    std::int64_t frames = 0;               // of the whole recording
    std::int64_t framesInOrders = 0;       // of those, how many had a known speed of at least 300 RPM
    double meanSquare = 0;                 // of the whole recording, full scale 1.0
    std::optional<OffsetEstimate> offset;  // nothing without a speed log
    // Rising speeds. If no frame had a speed, the one bin of speed 0 holds the whole recording, its orders are 0.
    std::vector<RpmBinLines> bins;
};

// Analyses the whole recording with this FFT size. Each frame is transformed once. Of long recordings only the minute
// in which the speed changes most is held in memory, to estimate the offset by.
OrderAnalysis analyseOrders(MonoReader& reader, const std::optional<RpmLog>& log, int fftSize);
