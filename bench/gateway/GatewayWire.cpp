#include "bench/gateway/GatewayWire.h"

#include <QtEndian>

namespace {

constexpr std::size_t kRequestBytes = 8;
constexpr std::uint32_t kRequestCommand = 11;
constexpr std::uint32_t kAcknowledgementCommand = 523;
// No receiver looks at it. Anything but 0, so that one who mistakes it for another field shows.
constexpr std::uint32_t kFramesCommand = 524;

template <typename Number>
Number numberAt(std::span<const std::byte> bytes, std::size_t offset) {
    const auto field = bytes.subspan(offset, sizeof(Number));
    return qFromBigEndian<Number>(field.data());
}

template <typename Number>
void append(QByteArray& bytes, Number number) {
    const Number swapped = qToBigEndian(number);
    bytes.append(reinterpret_cast<const char*>(&swapped), sizeof swapped);
}

}  // namespace

std::optional<ForwardRequest> readRequest(std::span<const std::byte> datagram) {
    if (datagram.size() != kRequestBytes || numberAt<std::uint32_t>(datagram, 0) != kRequestCommand)
        return std::nullopt;
    const auto state = numberAt<std::uint8_t>(datagram, wire::kStateAt);
    if (state > 1)
        return std::nullopt;
    return ForwardRequest{
        state == 1, {numberAt<std::uint8_t>(datagram, wire::kBusAt), numberAt<std::uint16_t>(datagram, wire::kIdAt)}};
}

QByteArray acknowledgementOf(const ForwardRequest& request) {
    QByteArray bytes;
    append(bytes, kAcknowledgementCommand);
    append(bytes, std::uint8_t(request.start ? 1 : 0));
    append(bytes, request.address.bus);
    append(bytes, request.address.id);
    return bytes;
}

QByteArray datagramOf(std::span<const CanFrame> frames, std::uint32_t headerStartMs) {
    const std::int64_t headerMs = frames.front().us / 1000;
    QByteArray bytes;
    bytes.reserve(12 + 14 * qsizetype(frames.size()));
    append(bytes, kFramesCommand);
    append(bytes, std::uint32_t(headerStartMs + headerMs));
    append(bytes, std::uint16_t(frames.size()));
    append(bytes, std::uint16_t(0));
    for (const CanFrame& frame : frames) {
        append(bytes, frame.address.bus);
        append(bytes, frame.length);
        append(bytes, frame.address.id);
        append(bytes, std::uint16_t(frame.us / 1000 - headerMs));
        bytes.append(reinterpret_cast<const char*>(frame.data.data()), qsizetype(frame.data.size()));
    }
    return bytes;
}
