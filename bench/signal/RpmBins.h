#pragma once

#include <cstddef>
#include <map>
#include <span>
#include <vector>

// One component of the sound at one speed.
struct SpectrumLine {
    double frequency = 0;  // Hz
    double order = 0;      // cycles per revolution, 0 where the speed is not known
    double level = 0;      // dBFS, 0 is an RMS of 1.0
};

struct RpmBinLines {
    double rpm = 0;                   // mean speed of the bin's frames
    std::vector<SpectrumLine> lines;  // strongest first
};

// Averages the power of frames by motor speed, in bins of 50 RPM. Speed 0 is for frames of unknown speed.
class RpmBins {
public:
    void add(double rpm, std::span<const float> power);

    bool isEmpty() const { return mBins.empty(); }
    // Rising speeds.
    std::vector<RpmBinLines> lines(double binWidth) const;
    // Mean square of all frames together, full scale 1.0, without DC.
    double meanSquare() const;

private:
    struct Bin {
        std::size_t frames = 0;
        double rpmSum = 0;
        std::vector<float> powerSum;
    };

    std::map<int, Bin> mBins;
};
