#pragma once

#include "bench/gateway/CanFrame.h"

#include <QString>

#include <cstdint>
#include <optional>

// Makes of a trace's VAPI_motorRPM the cyclic message that a motor sends: every `periodMs` a frame of eight bytes with
// the whole RPM in bytes 4 and 5, low byte first. The speed runs straight from one row to the next, as it does where
// the trace is heard. The field has no sign: backwards it is the magnitude. While the speed is invalid the motor is
// silent. Without an address the frames go out under the one that is asked for.
//
// Nothing, and an error that names the file, for a trace that cannot be read or has no speed in it.
std::optional<Recording> readMotorTrace(const QString& path, int periodMs, std::optional<CanAddress> address,
                                        QString* error);
