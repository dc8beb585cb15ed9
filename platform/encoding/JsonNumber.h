#pragma once

/// @file
/// Numbers in JSON's notation.

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace kt::encoding {

/// A number read by JSON's grammar, whatever the locale.
struct JsonNumber {
    const char* mEnd = nullptr;  ///< behind the number; null when there is none
    bool mIsInteger = false;     ///< neither fraction nor exponent, and fits mInteger
    std::int64_t mInteger = 0;
    double mReal = 0.0;  ///< the value of all but integers; infinite when it is beyond double

    double toReal() const { return mIsInteger ? static_cast<double>(mInteger) : mReal; }

    /// The longest number at begin.
    static JsonNumber parse(const char* begin, const char* end);

    /// The powers of ten that a double holds exactly.
    static constexpr std::array<double, 23> sPowersOfTen{1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                         1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                         1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

    /// Bytes that must be readable where parseShort() begins.
    static constexpr std::size_t sShortReadableSize = 32;
    /// Reads a number without exponent, of up to 7 digits and up to 15 ones with its fraction, as most are; mEnd stays
    /// null where that is not all there is.
    static JsonNumber parseShort(const char* begin);

private:
    /// The digits that stand in front of the first other byte of eight.
    struct Digits {
        static constexpr std::size_t sMaxCount = 8;

        explicit Digits(const char* text);

        std::size_t mCount;
        std::uint64_t mValue = 0;
    };
};

inline JsonNumber::Digits::Digits(const char* text) {
    constexpr std::uint64_t sOnes = 0x0101010101010101;
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, text, sizeof(bytes));
    bytes ^= sOnes * '0';
    // The highest bit of each byte that is no digit. A carry reaches only the bytes behind such a byte.
    const std::uint64_t others = (bytes | (bytes + sOnes * (0x80 - 10))) & (sOnes * 0x80);
    mCount = static_cast<std::size_t>(std::countr_zero(others)) / 8;
    if (mCount == 0) {
        return;
    }
    // Zeros take the place in front of the digits; then neighbours are joined: to pairs, and these all at once.
    bytes <<= 8 * (sMaxCount - mCount);
    bytes = bytes * 10 + (bytes >> 8U);
    constexpr std::uint64_t sPairs = 0x000000FF000000FF;
    constexpr std::uint64_t sFirstAndThird = 100 + (std::uint64_t{1'000'000} << 32U);
    constexpr std::uint64_t sSecondAndFourth = 1 + (std::uint64_t{10'000} << 32U);
    mValue = ((bytes & sPairs) * sFirstAndThird + ((bytes >> 16U) & sPairs) * sSecondAndFourth) >> 32U;
}

inline JsonNumber JsonNumber::parseShort(const char* begin) {
    JsonNumber number;
    if constexpr (std::endian::native != std::endian::little) {
        return number;
    }
    constexpr std::size_t sMaxExactDigits = 15;
    constexpr std::array<std::uint64_t, Digits::sMaxCount> sPowers{1,      10,      100,       1'000,
                                                                   10'000, 100'000, 1'000'000, 10'000'000};
    const bool isNegative = *begin == '-';
    const char* position = begin + static_cast<int>(isNegative);
    const Digits whole(position);
    if (whole.mCount == 0 || whole.mCount == Digits::sMaxCount || (*position == '0' && whole.mCount > 1)) {
        return number;
    }
    position += whole.mCount;
    if (*position != '.') {
        const auto value = static_cast<std::int64_t>(whole.mValue);
        number.mIsInteger = true;
        number.mInteger = isNegative ? -value : value;
        number.mEnd = position;
        return number;
    }
    ++position;
    const Digits fraction(position);
    std::size_t count = fraction.mCount;
    std::uint64_t mantissa = 0;
    if (count < Digits::sMaxCount) [[likely]] {
        mantissa = whole.mValue * sPowers[count] + fraction.mValue;
    } else {
        const Digits rest(position + count);
        if (rest.mCount == Digits::sMaxCount) {
            return number;
        }
        count += rest.mCount;
        mantissa = (whole.mValue * 100'000'000 + fraction.mValue) * sPowers[rest.mCount] + rest.mValue;
    }
    if (count == 0 || whole.mCount + count > sMaxExactDigits) {
        return number;
    }
    // Both operands are exact, so the one rounding is the right one.
    const double magnitude = static_cast<double>(mantissa) / sPowersOfTen[count];
    number.mReal = isNegative ? -magnitude : magnitude;
    number.mEnd = position + count;
    return number;
}

}  // namespace kt::encoding
