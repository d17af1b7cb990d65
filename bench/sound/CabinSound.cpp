#include "bench/sound/CabinSound.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace {

constexpr int kStretch = 48;  // samples: 1 ms
constexpr double kTwoPi = 2.0 * std::numbers::pi;

// Levels as RMS, full scale 1.0.
constexpr double kFanLevel = 0.004;
constexpr double kRoadLevelAt30 = 0.040;
constexpr double kWindLevelAt30 = 0.018;
constexpr double kInverterLevel = 0.0015;
constexpr double kInverterFrequency = 10'000.0;

constexpr double kFullTorque = 430.0;  // Nm
constexpr double kMostSpeed = 45.0;    // m/s
constexpr double kMostRpm = 20'000.0;

struct Order {
    int number;
    double level;  // at full torque, away from resonances
};

// A motor of 4 pole pairs and 48 slots with a pinion of 22 teeth: the second harmonic of the pole passing, the mesh of
// the gear and its double, the torque ripple at six times the electrical frequency, and the slots.
constexpr std::array<Order, 5> kOrders{{{8, 0.008}, {22, 0.010}, {24, 0.012}, {44, 0.004}, {48, 0.014}}};

// Where the body answers to the drive unit: up to 8 dB more around these frequencies.
struct Resonance {
    double frequency;
    double width;
};
constexpr std::array<Resonance, 2> kResonances{{{1150.0, 250.0}, {3400.0, 700.0}}};

double resonanceGain(double frequency) {
    double gain = 1.0;
    for (const Resonance& resonance : kResonances) {
        const double off = (frequency - resonance.frequency) / resonance.width;
        gain += 1.5 * std::exp(-off * off);
    }
    return gain;
}

// Fades in from standstill and out towards half the sample rate, where a tone would fold back.
double audible(double frequency, double rpm) {
    constexpr double kFadeFrom = 18'000.0;
    constexpr double kFadeTo = 21'000.0;
    const double top = std::clamp((kFadeTo - frequency) / (kFadeTo - kFadeFrom), 0.0, 1.0);
    return top * std::min(1.0, rpm / 200.0);
}

// Straight up to -3 dBFS, then ever flatter towards 0.95.
double bent(double x) {
    constexpr double kKnee = 0.7;
    constexpr double kRoom = 0.25;
    const double size = std::abs(x);
    return size <= kKnee ? x : std::copysign(kKnee + kRoom * std::tanh((size - kKnee) / kRoom), x);
}

// One step of an exponential approach with a time constant of 30 ms, taken once a stretch: no level ever clicks.
void glide(double& level, double wanted) {
    constexpr double kShare = 1.0 / 30.0;
    level += (wanted - level) * kShare;
}

}  // namespace

CabinSound::CabinSound(DriveMotion motion, std::uint64_t seed)
    : mMotion(std::move(motion)),
      mLoopSamples(std::max<qint64>(1, std::llround(mMotion.duration() * kCabinRate))),
      mWanted(levelsFor(mMotion.at(0.0))),
      mLevels(mWanted),
      mCommon(makeNoises(seed, 0)) {
    for (size_t seat = 0; seat < kSeats.size(); ++seat) {
        mOwn.push_back(makeNoises(seed, seat + 1));
        mPlaces[seat] = {std::pow(10.0, kSeats[seat].levelDb / 20.0),
                         int(std::lround(kSeats[seat].delayMs * kCabinRate / 1000.0))};
    }
}

CabinSound::Noises CabinSound::makeNoises(std::uint64_t seed, std::uint64_t stream) {
    const std::uint64_t first = stream * 3;
    return {ShapedNoise({Biquad::highPass(25, 0.7), Biquad::lowPass(300, 0.6), Biquad::peak(45, 2.0, 6.0),
                         Biquad::peak(220, 6.0, 8.0)},
                        seed, first),
            ShapedNoise({Biquad::highPass(250, 0.5), Biquad::lowPass(1800, 0.5)}, seed, first + 1),
            ShapedNoise({Biquad::highPass(60, 0.7), Biquad::lowPass(900, 0.5)}, seed, first + 2)};
}

CabinSound::Levels CabinSound::levelsFor(const DriveMotion::Moment& moment) {
    const double speed = std::min(moment.speed, kMostSpeed) / 30.0;
    const double rpm = std::min(moment.rpm, kMostRpm);
    const double load = std::min(moment.torque / kFullTorque, 1.0);
    Levels levels;
    for (const Order& order : kOrders) {
        const double frequency = order.number * rpm / 60.0;
        levels.orders.push_back(order.level * (0.15 + 0.85 * load) * resonanceGain(frequency) *
                                audible(frequency, rpm));
    }
    levels.inverter = kInverterLevel * (0.2 + 0.8 * load) * audible(kInverterFrequency, rpm);
    levels.road = kRoadLevelAt30 * std::pow(speed, 1.5);
    levels.wind = kWindLevelAt30 * speed * speed * speed;
    return levels;
}

bool CabinSound::render(std::span<qint16> samples) {
    for (size_t at = 0; at + kCabinChannels <= samples.size(); at += kCabinChannels) {
        if (mLeftOfStretch == 0)
            beginStretch();
        renderFrame(&samples[at]);
        --mLeftOfStretch;
    }
    return true;
}

void CabinSound::beginStretch() {
    mLeftOfStretch = kStretch;
    const DriveMotion::Moment from = mMotion.at(double(mPosition) / kCabinRate);
    const DriveMotion::Moment to = mMotion.at(double(mPosition + kStretch) / kCabinRate);
    const auto turnsPerSample = [](double rpm) { return std::min(rpm, kMostRpm) / 60.0 / kCabinRate; };
    mTurnsPerSample = turnsPerSample(from.rpm);
    mTurnsStep = (turnsPerSample(to.rpm) - mTurnsPerSample) / kStretch;
    mWanted = levelsFor(to);
    glideLevels();
    mPosition = (mPosition + kStretch) % mLoopSamples;
}

void CabinSound::glideLevels() {
    for (size_t i = 0; i < mLevels.orders.size(); ++i)
        glide(mLevels.orders[i], mWanted.orders[i]);
    glide(mLevels.inverter, mWanted.inverter);
    glide(mLevels.road, mWanted.road);
    glide(mLevels.wind, mWanted.wind);
}

double CabinSound::tones() {
    double sum = 0.0;
    for (size_t i = 0; i < kOrders.size(); ++i)
        sum += mLevels.orders[i] * std::sin(kTwoPi * kOrders[i].number * mTurn);
    sum += mLevels.inverter * std::sin(kTwoPi * mInverterTurn);
    mTurn += mTurnsPerSample;
    mTurn -= std::floor(mTurn);
    mTurnsPerSample += mTurnsStep;
    mInverterTurn += kInverterFrequency / kCabinRate;
    mInverterTurn -= std::floor(mInverterTurn);
    return sum * std::numbers::sqrt2;
}

void CabinSound::renderFrame(qint16* frame) {
    constexpr double kHalfPower = 1.0 / std::numbers::sqrt2;
    const auto noise = [this](Noises& noises) {
        return kHalfPower *
               (mLevels.road * noises.road.next() + mLevels.wind * noises.wind.next() + kFanLevel * noises.fan.next());
    };
    mHeardAt = (mHeardAt + 1) % mHeard.size();
    mHeard[mHeardAt] = tones() + noise(mCommon);
    for (size_t seat = 0; seat < mPlaces.size(); ++seat) {
        const auto [gain, delay] = mPlaces[seat];
        const double heard = mHeard[(mHeardAt + mHeard.size() - unsigned(delay)) % mHeard.size()];
        frame[seat] = qint16(std::lround(bent(gain * (heard + noise(mOwn[seat]))) * 32767.0));
    }
}
