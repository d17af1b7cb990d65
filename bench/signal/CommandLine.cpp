#include "bench/signal/CommandLine.h"

#include <charconv>
#include <cmath>
#include <cstdio>

std::optional<int> answerStandardOptions(std::span<char* const> arguments, std::string_view name,
                                         std::string_view version, std::string_view help) {
    for (const std::string_view argument : arguments) {
        if (argument == "--help" || argument == "-h") {
            std::fwrite(help.data(), 1, help.size(), stdout);
            return 0;
        }
        if (argument == "--version") {
            std::printf("%.*s (NVH bench) %.*s\n", static_cast<int>(name.size()), name.data(),
                        static_cast<int>(version.size()), version.data());
            return 0;
        }
    }
    return std::nullopt;
}

std::optional<double> parseNumber(std::string_view text) {
    double number = 0;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (failure != std::errc() || end != text.data() + text.size() || !std::isfinite(number)) {
        return std::nullopt;
    }
    return number;
}
