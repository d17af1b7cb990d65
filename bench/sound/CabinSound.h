#pragma once

#include "bench/sound/Cabin.h"
#include "bench/sound/DriveMotion.h"
#include "bench/sound/Noise.h"
#include "bench/sound/SoundSource.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

// The cabin of an electric car on a drive, over and over: what its eight microphones hear.
//
// - Motor orders: tones at whole multiples of the motor's speed, exactly at the trace's RPM at every sample, the louder
//   the more torque; and the tone of the inverter's switching, which stays where it is.
// - Road noise: low, with the tyre's cavity and the body's drumming; its amplitude grows with speed to the power 1.5,
//   that is 9 dB a doubling.
// - Wind noise: higher, its amplitude grows with the cube of speed (18 dB a doubling, the law of a dipole source).
// - A fan, so that no microphone is ever silent.
//
// The tones and one half of the noise power reach every seat with its own level and delay; the other half is the seat's
// own. At 30 m/s the whole is around -26 dBFS RMS. It cannot clip: what a trace gives is bounded, and peaks above -3
// dBFS are bent. One motion and one seed give the same samples, however they are asked for.
class CabinSound : public SoundSource {
public:
    CabinSound(DriveMotion motion, std::uint64_t seed);

    bool render(std::span<qint16> samples) override;
    void playFrom(double seconds) override { mPosition = std::llround(seconds * kCabinRate) % mLoopSamples; }

private:
    struct Noises {
        ShapedNoise road;
        ShapedNoise wind;
        ShapedNoise fan;
    };
    struct Levels {
        std::vector<double> orders;
        double inverter = 0.0;
        double road = 0.0;
        double wind = 0.0;
    };

    static Noises makeNoises(std::uint64_t seed, std::uint64_t stream);
    static Levels levelsFor(const DriveMotion::Moment& moment);

    void beginStretch();
    void glideLevels();
    double tones();
    void renderFrame(qint16* frame);

    const DriveMotion mMotion;
    const qint64 mLoopSamples;
    qint64 mPosition = 0;

    // Within a stretch the motor's speed runs straight from the trace's value at its start to that at its end.
    int mLeftOfStretch = 0;
    double mTurnsPerSample = 0.0;
    double mTurnsStep = 0.0;
    double mTurn = 0.0;
    double mInverterTurn = 0.0;

    Levels mWanted;
    Levels mLevels;
    Noises mCommon;
    std::vector<Noises> mOwn;

    struct Place {
        double gain;
        int delay;
    };
    std::array<Place, kCabinChannels> mPlaces{};
    // What all seats hear, for as long as the farthest one needs it.
    std::array<double, 256> mHeard{};
    unsigned mHeardAt = 0;
};
