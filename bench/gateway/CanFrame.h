#pragma once

#include <array>
#include <cstdint>
#include <vector>

// The bus and the id under which a message travels.
struct CanAddress {
    std::uint8_t bus = 0;
    std::uint16_t id = 0;

    bool operator==(const CanAddress&) const = default;
};

// A frame as it was on a bus: classic CAN, 11-bit id.
struct CanFrame {
    std::int64_t us = 0;  // since the first frame of its recording
    CanAddress address;
    std::uint8_t length = 0;  // of data, 0 to 8; the bytes behind it are 0
    std::array<std::uint8_t, 8> data{};
};

// What a gateway has to forward, in the order of time.
struct Recording {
    std::vector<CanFrame> frames;
    // From the first frame to the first frame again, when it is repeated.
    std::int64_t passUs = 0;
    // The frames have no bus and id of their own and go out with those that are asked for.
    bool asAskedFor = false;
};
