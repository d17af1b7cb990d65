#pragma once

#include <optional>

// The car behind the traces: a mid-size electric car with one motor and one gear, with the driver and 136 kg of load as
// emission tests weigh it. It is no particular car; its numbers are round ones from the middle of its class.
//
//     mass                      1930 kg
//     turning parts             four wheels of 1.0 kg m², a rotor of 0.040 kg m²; together as 63 kg more to accelerate
//     road load                 F = A + B v + C v²,  A = 170 N, B = 2.0 N s/m, C = 0.345 N s²/m²
//     rolling radius            0.334 m
//     gear                      67:22 and 68:23, together 9.004; 97 % efficient either way
//     motor                     430 Nm, 250 kW, 16,000 1/min
//     regeneration              180 Nm, 60 kW at the motor; fades out between 3 and 1 m/s, below the brakes are alone
//
// Road load in this form, and coefficients of this size (38 lbf, 0.2 lbf/mph, 0.0155 lbf/mph²), are what coast-down
// tests give (SAE J1263 and J2263) and chassis dynamometers are set to (40 CFR 1066.210). A is near a rolling
// resistance of 0.9 % of the weight, C near half the air's density, 1.2 kg/m³, times a drag area of 0.575 m². The
// equation of motion with the turning parts as additional mass is the usual one (T. D. Gillespie, Fundamentals of
// Vehicle Dynamics, chapter 2; L. Guzzella and A. Sciarretta, Vehicle Propulsion Systems, chapter 2).
class ElectricCar {
public:
    static constexpr double kMass = 1930.0;           // kg
    static constexpr double kWheelInertia = 4 * 1.0;  // kg m²
    static constexpr double kRotorInertia = 0.040;    // kg m²
    static constexpr double kRoadLoadA = 170.0;       // N
    static constexpr double kRoadLoadB = 2.0;         // N s/m
    static constexpr double kRoadLoadC = 0.345;       // N s²/m²
    static constexpr double kWheelRadius = 0.334;     // m
    static constexpr double kGear = 67.0 / 22.0 * 68.0 / 23.0;
    static constexpr double kGearEfficiency = 0.97;
    static constexpr double kMostTorque = 430.0;       // Nm
    static constexpr double kMostPower = 250e3;        // W
    static constexpr double kMostRpm = 16'000.0;       // 1/min
    static constexpr double kMostRegenTorque = 180.0;  // Nm
    static constexpr double kMostRegenPower = 60e3;    // W

    struct Demand {
        double speed = 0.0;         // m/s, negative in reverse
        double acceleration = 0.0;  // m/s²
        double grade = 0.0;         // rise over run
    };

    // 1/min, negative in reverse.
    static double rpmAt(double speed);
    static double speedAt(double rpm);
    // What the motor is told to give, in Nm, positive forward. Braking beyond what regeneration takes is the brakes'.
    // Nothing if the motor cannot do what is demanded.
    static std::optional<double> torqueFor(const Demand& demand);
};
