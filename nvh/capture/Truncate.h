#pragma once

#include <algorithm>
#include <limits>

// A real as a whole number, truncated toward zero; what does not fit an int becomes the nearest one that does.
inline int truncated(double value) {
    using Limits = std::numeric_limits<int>;
    return int(std::clamp(value, double(Limits::min()), double(Limits::max())));
}
