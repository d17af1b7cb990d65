#pragma once

#include <HelixDash/values/TypedDataValues.h>

// The vehicle signals that the recorder reads and sets, each with its name and type. What the vehicle does not have is
// null, and so is everything before the host has set its signals up. Any thread.
namespace VehicleSignals {

// A signal's name with its type, to be looked up where it is needed:
//
//     RealDataValue* speed = VehicleSignals::kSpeed.find();
template <typename Value>
struct Signal {
    const char* name;
    // Null where the vehicle does not have it.
    Value* find() const;
    // Under the signal's lock; the other value where the vehicle does not have the signal.
    template <typename Content>
    Content valueOr(Content otherwise) const {
        const Value* value = find();
        const DataValue::StateLocker locker(value);
        return value ? Content(value->value()) : otherwise;
    }
};

inline constexpr Signal<RealDataValue> kSpeed{"VAPI_signedVehicleSpeed"};  // mph, negative in reverse
inline constexpr Signal<RealDataValue> kTorque{"VAPI_torqueCmd"};          // Nm
inline constexpr Signal<RealDataValue> kMotorRpm{"VAPI_motorRPM"};         // 1/min
inline constexpr Signal<BoolDataValue> kBrakePedal{"VAPI_brakePedal"};     // pressed
inline constexpr Signal<IntDataValue> kTrim{"VAPI_trim"};                  // TrimNameMap

// °C.
inline constexpr Signal<RealDataValue> kOutsideTemp{"HVAC_outsideTemp"};
inline constexpr Signal<RealDataValue> kInsideTemp{"HVAC_insideTemp"};
// bar.
inline constexpr Signal<RealDataValue> kTyreFrontLeft{"TPMS_pressureFL"};
inline constexpr Signal<RealDataValue> kTyreFrontRight{"TPMS_pressureFR"};
inline constexpr Signal<RealDataValue> kTyreRearLeft{"TPMS_pressureRL"};
inline constexpr Signal<RealDataValue> kTyreRearRight{"TPMS_pressureRR"};

// The left steering-wheel buttons (pressed), and the scroll wheel's counter.
inline constexpr Signal<BoolDataValue> kWheelTop{"STW_leftTop"};
inline constexpr Signal<BoolDataValue> kWheelMiddle{"STW_leftMiddle"};
inline constexpr Signal<BoolDataValue> kWheelBottom{"STW_leftBottom"};
inline constexpr Signal<IntDataValue> kWheelScroll{"STW_leftScroll"};
inline constexpr Signal<IntDataValue> kWheelOwner{"GUI_steeringWheelControlsMode"};

// True for a drive without anti-clunk control.
inline constexpr Signal<BoolDataValue> kAntiClunkOff{"GUI_disableAntiClunkRequest"};

}  // namespace VehicleSignals
