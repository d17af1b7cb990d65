#pragma once

#include "bench/gateway/CanFrame.h"

#include <QByteArray>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

// The gateway's side of its UDP protocol. All numbers on the wire are big-endian.
//
// Request, to the gateway's port 20100, and acknowledgement, to port 20101 of the requester; 8 bytes each:
//
//     0  4  command: 11 in a request, 523 in its acknowledgement
//     4  1  state: 1 start, 0 stop
//     5  1  bus
//     6  2  message id
//
// Datagram of forwarded frames, to port 20098 of the requester:
//
//     0  4  command
//     4  4  header time, milliseconds of the gateway's clock
//     8  2  number of frame records
//    10  2  reserved
//    12  14 for each frame:  0 1 bus,  1 1 length,  2 2 message id,  4 2 time after the header's,  6 8 data

struct ForwardRequest {
    bool start = false;
    CanAddress address;
};

// Where a fault strikes.
namespace wire {
constexpr qsizetype kStateAt = 4;
constexpr qsizetype kBusAt = 5;
constexpr qsizetype kIdAt = 6;
constexpr qsizetype kFrameCountAt = 8;
}  // namespace wire

// As many frames as fit in the 1500 bytes that a receiver reads.
constexpr int kMostFramesPerDatagram = 106;

// Nothing for a datagram that is no request: any other length, command or state.
std::optional<ForwardRequest> readRequest(std::span<const std::byte> datagram);

QByteArray acknowledgementOf(const ForwardRequest& request);

// Of 1 to kMostFramesPerDatagram frames, none more than 65.535 s after the first. The header's time is the first
// frame's; the recording begins at `headerStartMs`, and the clock wraps at 32 bits.
QByteArray datagramOf(std::span<const CanFrame> frames, std::uint32_t headerStartMs);
