#pragma once

#include <QByteArray>

#include <functional>
#include <vector>

// Sounds of values known by calculation.

using Samples = std::vector<double>;
inline constexpr int kRate = 48000;

// `seconds` of what the function gives for each time in seconds.
Samples sampled(double seconds, const std::function<double(double)>& function);
Samples sine(double seconds, double frequency, double amplitude);
// White and Gaussian, the same for the same seed.
Samples noise(double seconds, double rms, unsigned seed);
// Sample by sample; `first` is the longer one.
Samples operator+(Samples first, const Samples& second);

// The header and samples of a 16-bit PCM WAV file; all channels are of equal length.
QByteArray wavBytes(const std::vector<Samples>& channels);
