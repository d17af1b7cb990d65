#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// One line of a log that `candump -L` has written:
//
//     (1436509052.249713) can0 244#0000000000000100
//     (1436509052.250113) can1 12345678#0102           extended id: eight digits
//     (1436509052.250301) can0 244#R8                  remote frame, with or without its length
//     (1436509052.251000) can0 244##1AABBCC            CAN FD: a digit of flags, then up to 64 bytes
//
// Several blanks between the fields, and an R or T for the direction (`candump -x`) behind them, are tolerated.
struct CandumpLine {
    enum class Kind { Classic, Extended, Error, Remote, Fd };

    Kind kind = Kind::Classic;
    std::int64_t us = 0;         // absolute, since 1970 as a rule
    std::string_view interface;  // lies in the text that was read
    std::uint32_t id = 0;
    std::uint8_t length = 0;  // of a classic or extended frame
    std::array<std::uint8_t, 8> data{};
};

// Nothing, and the reason, for a line that is not whole.
std::optional<CandumpLine> readCandumpLine(std::string_view text, std::string* reason);
