#pragma once

#include <array>

// The cabin's microphone array as the recorder opens it.
inline constexpr int kCabinChannels = 8;
inline constexpr int kCabinRate = 48000;

// What a place in the cabin does to the sound that all of them hear. The levels stay well within the 1.5 dB at which a
// microphone check calls a microphone wrong; no two places share both numbers, so a swapped channel shows.
struct Seat {
    const char* place;
    double levelDb;
    double delayMs;
};

inline constexpr std::array<Seat, kCabinChannels> kSeats{{
    {"driver, window side", 0.4, 0.0},
    {"driver, middle", 0.2, 0.5},
    {"front passenger, middle", 0.1, 0.9},
    {"front passenger, window side", 0.3, 1.4},
    {"rear left, window side", -0.3, 2.5},
    {"rear left, middle", -0.5, 2.9},
    {"rear right, middle", -0.6, 3.4},
    {"rear right, window side", -0.4, 3.8},
}};
