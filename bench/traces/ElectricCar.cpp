#include "bench/traces/ElectricCar.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double kGravity = 9.80665;      // m/s²
constexpr double kStandstillSpeed = 0.3;  // m/s, below which rolling resistance fades out
constexpr double kRegenEndsAt = 1.0;      // m/s
constexpr double kRegenFullFrom = 3.0;    // m/s
constexpr double kRadiansPerTurn = 2.0 * std::numbers::pi;

using Car = ElectricCar;

// The most that a torque and a power limit leave at a speed of the motor.
double limitAt(double rpm, double torque, double power) {
    const double radiansPerSecond = std::abs(rpm) * kRadiansPerTurn / 60.0;
    return radiansPerSecond * torque > power ? power / radiansPerSecond : torque;
}

// At the wheels, positive forward.
double forceFor(const Car::Demand& demand) {
    constexpr double kTurningMass =
        (Car::kWheelInertia + Car::kRotorInertia * Car::kGear * Car::kGear) / (Car::kWheelRadius * Car::kWheelRadius);
    const double v = std::abs(demand.speed);
    const double slope = std::sqrt(1.0 + demand.grade * demand.grade);
    const double roadLoad = (Car::kRoadLoadA / slope + v * (Car::kRoadLoadB + v * Car::kRoadLoadC)) *
                            std::clamp(demand.speed / kStandstillSpeed, -1.0, 1.0);
    return roadLoad + Car::kMass * kGravity * demand.grade / slope + (Car::kMass + kTurningMass) * demand.acceleration;
}

}  // namespace

double ElectricCar::rpmAt(double speed) {
    return speed / kWheelRadius * kGear * 60.0 / kRadiansPerTurn;
}

double ElectricCar::speedAt(double rpm) {
    return rpm * kRadiansPerTurn / 60.0 / kGear * kWheelRadius;
}

std::optional<double> ElectricCar::torqueFor(const Demand& demand) {
    // The brakes hold a standing car, on a hill too.
    if (demand.speed == 0.0 && demand.acceleration == 0.0)
        return 0.0;
    const double rpm = rpmAt(demand.speed);
    const double direction =
        demand.speed != 0.0 ? std::copysign(1.0, demand.speed) : std::copysign(1.0, demand.acceleration);
    // From here on along the way the car goes: positive drives, negative brakes.
    const double atWheels = direction * forceFor(demand) * kWheelRadius / kGear;
    if (atWheels >= 0.0) {
        const double torque = atWheels / kGearEfficiency;
        if (torque > limitAt(rpm, kMostTorque, kMostPower) || std::abs(rpm) > kMostRpm)
            return std::nullopt;
        return direction * torque;
    }
    const double blend =
        std::clamp((std::abs(demand.speed) - kRegenEndsAt) / (kRegenFullFrom - kRegenEndsAt), 0.0, 1.0);
    const double taken = std::min(-atWheels * kGearEfficiency, blend * limitAt(rpm, kMostRegenTorque, kMostRegenPower));
    return -direction * taken;
}
