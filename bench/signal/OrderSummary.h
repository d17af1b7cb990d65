#pragma once

#include "bench/signal/OrderAnalysis.h"

#include <cstddef>
#include <vector>

// A component that was found at many speeds.
struct Component {
    double value = 0;      // order, or frequency in Hz
    double level = 0;      // dBFS where it is strongest
    double rpm = 0;        // where that is
    std::size_t bins = 0;  // number of speed bins in which it was found
};

// What an analysis comes to in a few lines: which orders and which tones of fixed frequency there are. A component is
// an order if it keeps its order over more speeds than it keeps its frequency; where the speed hardly changes, both are
// the same, and it counts as an order.
struct OrderSummary {
    std::vector<Component> orders;  // strongest first
    std::vector<Component> tones;   // strongest first

    static OrderSummary of(const OrderAnalysis& analysis);
};
