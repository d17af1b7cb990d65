#include "bench/gateway/CandumpLine.h"

#include <algorithm>
#include <charconv>

namespace {

constexpr std::uint32_t kMostStandardId = 0x7FF;
constexpr std::uint32_t kMostExtendedId = 0x1FFF'FFFF;
// Set in the id of a message about the bus itself.
constexpr std::uint32_t kErrorFlag = 0x2000'0000;
constexpr std::size_t kMostFdBytes = 64;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// The number that all of `text` spells; nothing for a sign, a blank, or no text at all.
template <typename Number>
std::optional<Number> wholeNumber(std::string_view text, int base) {
    Number number = 0;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (failure != std::errc() || end != text.data() + text.size() || text.front() == '-')
        return std::nullopt;
    return number;
}

// Short and printable whatever the file holds, so that the complaint stays one readable line.
std::string quoted(std::string_view text) {
    constexpr std::size_t kMost = 40;
    std::string shown(text.substr(0, kMost));
    std::replace_if(
        shown.begin(), shown.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
    return '"' + shown + (text.size() > kMost ? "..." : "") + '"';
}

class LineReader {
public:
    explicit LineReader(std::string_view text) : mRest(text) {}

    bool read() { return readTime() && readInterface() && readFrame() && readDirection(); }

    CandumpLine mLine;
    std::string mReason;

private:
    bool fail(std::string reason) {
        mReason = std::move(reason);
        return false;
    }

    // The text up to the next blank; none at the end of the line.
    std::string_view nextField() {
        mRest.remove_prefix(std::min(mRest.find_first_not_of(' '), mRest.size()));
        const std::string_view field = mRest.substr(0, mRest.find(' '));
        mRest.remove_prefix(field.size());
        return field;
    }

    bool readTime();
    bool readInterface();
    bool readFrame();
    bool readDirection();
    bool readId(std::string_view text);
    bool readData(std::string_view text);
    bool readRemoteLength(std::string_view text);
    bool readFdData(std::string_view text);

    std::string_view mRest;
};

bool LineReader::readTime() {
    const std::string_view field = nextField();
    if (field.size() < 2 || field.front() != '(' || field.back() != ')')
        return fail("wanted is a time in parentheses, not " + quoted(field));
    const std::string_view time = field.substr(1, field.size() - 2);
    const std::size_t point = std::min(time.find('.'), time.size());
    std::string fraction(time.substr(std::min(point + 1, time.size())));
    const auto seconds = wholeNumber<std::int64_t>(time.substr(0, point), 10);
    constexpr std::int64_t kMostSeconds = 1'000'000'000'000;
    if (!seconds || *seconds > kMostSeconds || fraction.empty() ||
        !std::all_of(fraction.begin(), fraction.end(), isDigit))
        return fail("wanted is a time such as (1436509052.249713), not " + quoted(field));
    fraction.resize(6, '0');
    mLine.us = *seconds * 1'000'000 + *wholeNumber<std::int64_t>(fraction, 10);
    return true;
}

bool LineReader::readInterface() {
    mLine.interface = nextField();
    return !mLine.interface.empty() || fail("ends before the interface");
}

bool LineReader::readFrame() {
    const std::string_view field = nextField();
    const std::size_t hash = field.find('#');
    if (hash == std::string_view::npos)
        return fail(field.empty() ? "ends before the frame" : "no # between id and data in " + quoted(field));
    if (!readId(field.substr(0, hash)))
        return false;
    const std::string_view payload = field.substr(hash + 1);
    if (payload.starts_with('#'))
        return readFdData(payload.substr(1));
    if (payload.starts_with('R'))
        return readRemoteLength(payload.substr(1));
    return readData(payload);
}

bool LineReader::readId(std::string_view text) {
    const auto id = wholeNumber<std::uint32_t>(text, 16);
    if (!id || (text.size() != 3 && text.size() != 8))
        return fail("id " + quoted(text) + ": wanted are three or eight hexadecimal digits");
    const bool extended = text.size() == 8;
    if (extended && *id > (kMostExtendedId | kErrorFlag))
        return fail("id " + quoted(text) + " is above 1FFFFFFF");
    if (!extended && *id > kMostStandardId)
        return fail("id " + quoted(text) + " is above 7FF");
    mLine.id = *id;
    if (extended)
        mLine.kind = (*id & kErrorFlag) != 0 ? CandumpLine::Kind::Error : CandumpLine::Kind::Extended;
    return true;
}

bool LineReader::readData(std::string_view text) {
    if (text.size() > 2 * mLine.data.size())
        return fail("data " + quoted(text) + " is longer than 8 bytes");
    if (text.size() % 2 != 0)
        return fail("data " + quoted(text) + " ends in the middle of a byte");
    for (std::size_t i = 0; i < text.size() / 2; ++i) {
        const auto byte = wholeNumber<std::uint8_t>(text.substr(2 * i, 2), 16);
        if (!byte)
            return fail("data " + quoted(text) + ": " + quoted(text.substr(2 * i, 2)) + " is no byte");
        mLine.data[i] = *byte;
    }
    mLine.length = static_cast<std::uint8_t>(text.size() / 2);
    return true;
}

bool LineReader::readRemoteLength(std::string_view text) {
    mLine.kind = CandumpLine::Kind::Remote;
    return text.empty() || (text.size() == 1 && text[0] >= '0' && text[0] <= '8') ||
           fail("remote frame of length " + quoted(text));
}

bool LineReader::readFdData(std::string_view text) {
    mLine.kind = CandumpLine::Kind::Fd;
    const auto isHexDigit = [](char c) { return wholeNumber<unsigned>({&c, 1}, 16).has_value(); };
    if (text.size() % 2 == 0 || text.size() > 1 + 2 * kMostFdBytes ||
        !std::all_of(text.begin(), text.end(), isHexDigit))
        return fail("CAN FD frame " + quoted(text) + ": wanted are a digit of flags and up to 64 bytes");
    return true;
}

bool LineReader::readDirection() {
    const std::string_view field = nextField();
    const std::string_view more = nextField();
    return ((field.empty() || field == "R" || field == "T") && more.empty()) ||
           fail("unexpected " + quoted(more.empty() ? field : more) + " behind the frame");
}

}  // namespace

std::optional<CandumpLine> readCandumpLine(std::string_view text, std::string* reason) {
    LineReader reader(text);
    if (!reader.read()) {
        *reason = reader.mReason;
        return std::nullopt;
    }
    return reader.mLine;
}
