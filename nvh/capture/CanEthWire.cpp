#include "nvh/capture/CanEthWire.h"

namespace canEth {

std::array<std::byte, kRequestSize> encodeRequest(const Forwarding& forwarding) {
    const auto byteOf = [](quint32 number, int shift) { return std::byte(number >> shift & 0xFF); };
    return {byteOf(kRequestCommand, 24),     byteOf(kRequestCommand, 16),    byteOf(kRequestCommand, 8),
            byteOf(kRequestCommand, 0),      std::byte(forwarding.state),    std::byte(forwarding.bus),
            byteOf(forwarding.messageId, 8), byteOf(forwarding.messageId, 0)};
}

std::optional<Forwarding> decodeAcknowledgement(std::span<const std::byte> bytes) {
    BigEndianReader reader(bytes);
    const auto command = reader.read<quint32>();
    Forwarding confirmed;
    confirmed.state = reader.read<quint8>();
    confirmed.bus = reader.read<quint8>();
    confirmed.messageId = reader.read<quint16>();
    return reader.ok() && command == kAckCommand ? std::optional(confirmed) : std::nullopt;
}

std::optional<DataHeader> readHeader(BigEndianReader& reader) {
    DataHeader header;
    reader.skip(4);  // command
    header.time = reader.read<quint32>();
    header.count = reader.read<quint16>();
    reader.skip(2);  // reserved
    return reader.ok() ? std::optional(header) : std::nullopt;
}

std::optional<FrameRecord> readRecord(BigEndianReader& reader) {
    FrameRecord record;
    record.bus = reader.read<quint8>();
    record.length = reader.read<quint8>();
    record.messageId = reader.read<quint16>();
    record.offsetTime = reader.read<quint16>();
    record.data = reader.read<quint64>();
    return reader.ok() ? std::optional(record) : std::nullopt;
}

}  // namespace canEth
