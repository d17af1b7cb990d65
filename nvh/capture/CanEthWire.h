#pragma once

#include "nvh/Export.h"
#include "nvh/capture/BigEndianReader.h"

#include <QtGlobal>

#include <array>
#include <cstddef>
#include <optional>
#include <span>

// The datagrams between the recorder and the vehicle gateway, as bytes. All numbers are big-endian.
//
//     request and acknowledgement, 8 bytes:  command 4, state 1, bus 1, message id 2
//     data, 12 bytes and 14 for each frame:  command 4, header time 4, frame count 2, reserved 2,
//                                            then bus 1, length 1, message id 2, offset time 2, data 8
//
// Free functions without state; any thread.
namespace canEth {

// The protocol's ports: requests go to the gateway's, acknowledgements and frames come to the recorder's.
constexpr quint16 kGatewayPort = 20100;
constexpr quint16 kAckPort = 20101;
constexpr quint16 kDataPort = 20098;

// What a request and its acknowledgement begin with.
constexpr quint32 kRequestCommand = 11;
constexpr quint32 kAckCommand = 523;

// How many bytes a request has, and a data datagram before its frames.
constexpr std::size_t kRequestSize = 8;
constexpr std::size_t kHeaderSize = 12;
// What is received at most; the rest of a longer datagram is dropped.
constexpr std::size_t kAckCapacity = 100;
constexpr std::size_t kDatagramCapacity = 1500;

// What the gateway is to do, or does.
enum ForwardingState : quint8 { StopForwarding = 0, StartForwarding = 1 };

// What a request asks for, and what an acknowledgement confirms.
struct Forwarding {
    quint8 state = StopForwarding;
    quint8 bus = 0;
    quint16 messageId = 0;

    bool operator==(const Forwarding&) const = default;
};

// How a data datagram begins.
struct DataHeader {
    quint32 time = 0;   // in the gateway's unit
    quint16 count = 0;  // of the frame records that follow, as the gateway says
};

// One forwarded CAN frame.
struct FrameRecord {
    quint8 bus = 0;
    quint8 length = 0;  // valid data bytes
    quint16 messageId = 0;
    quint16 offsetTime = 0;  // from the header's time
    quint64 data = 0;        // data byte 0 is the most significant
};

// The datagram that asks for it.
NVH_EXPORT std::array<std::byte, kRequestSize> encodeRequest(const Forwarding& forwarding);

// Nothing if the bytes are too short or another command.
NVH_EXPORT std::optional<Forwarding> decodeAcknowledgement(std::span<const std::byte> bytes);

// The next part of a data datagram; nothing if it is not wholly there. The command and the reserved bytes say nothing
// that matters here.
NVH_EXPORT std::optional<DataHeader> readHeader(BigEndianReader& reader);
NVH_EXPORT std::optional<FrameRecord> readRecord(BigEndianReader& reader);

}  // namespace canEth
