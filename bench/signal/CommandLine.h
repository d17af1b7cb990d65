#pragma once

#include <optional>
#include <span>
#include <string_view>

// The command line that check-mic and whine have in common: positional arguments, --help and --version. Their callers
// pass exactly the positional ones.

// Prints `help` for --help or -h, and "NAME (NVH bench) VERSION" for --version, by which an installer knows this
// project's copy from a vehicle's own. Returns the status to end with, or nothing if neither was asked for.
std::optional<int> answerStandardOptions(std::span<char* const> arguments, std::string_view name,
                                         std::string_view version, std::string_view help);

// The whole of `text` as a finite number, whatever the locale; nothing for anything else.
std::optional<double> parseNumber(std::string_view text);
