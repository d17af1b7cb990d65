#pragma once

#include <concepts>
#include <cstddef>
#include <span>

// Reads the numbers of a datagram from front to back:
//
//     BigEndianReader reader(bytes);
//     const auto bus = reader.read<quint8>();
//     const auto id = reader.read<quint16>();
//     if (!reader.ok())
//         return;      // the datagram was too short
//
// It never passes the end of the bytes: from the first number that is not wholly there on, everything reads 0 and ok()
// is false. So the caller asks once, after the last number. Does not own the bytes.
class BigEndianReader {
public:
    // The bytes stay where they are while it reads.
    explicit BigEndianReader(std::span<const std::byte> bytes) : mRest(bytes) {}

    // The next number.
    template <std::unsigned_integral Number>
    Number read() {
        if (!take(sizeof(Number)))
            return 0;
        Number number = 0;
        for (const std::byte byte : mTaken)
            number = Number((number << 8) | std::to_integer<Number>(byte));
        return number;
    }
    // Passes over that many bytes.
    void skip(std::size_t bytes) { take(bytes); }

    // False if something that was asked for was not wholly there.
    bool ok() const { return mOk; }

private:
    bool take(std::size_t bytes) {
        mOk = mOk && bytes <= mRest.size();
        if (!mOk)
            return false;
        mTaken = mRest.first(bytes);
        mRest = mRest.subspan(bytes);
        return true;
    }

    std::span<const std::byte> mRest;
    std::span<const std::byte> mTaken;
    bool mOk = true;
};
