#pragma once

#include <span>
#include <vector>

// A component of a spectrum: a tone, or an order that a changing speed has spread over some bins.
struct Peak {
    double frequency = 0;   // Hz, centre of gravity of its power
    double meanSquare = 0;  // full scale 1.0, without the noise under it
};

// Every component of a band-corrected power spectrum (HannSpectrum) whose highest bin stands at least 6 dB above the
// median of its neighbourhood: 10 % of its frequency to both sides, at least 16 bins. A component reaches down to 3 dB
// above that median, or to a valley 3 dB deep before the next one; what is nearer than that is one component. Its power
// is the sum over its bins less the median's share. Rising frequencies.
std::vector<Peak> findPeaks(std::span<const float> power, double binWidth);
