#include "platform/encoding/JsonNumber.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace kt::encoding {

namespace {

/// Digits that surely fit 64 bits.
constexpr int sMaxExactDigits = 19;

bool isDigit(const char* position, const char* end) { return position != end && *position >= '0' && *position <= '9'; }

/// The parts of a number as they are met.
struct Decimal {
    const char* mBegin = nullptr;
    bool mIsNegative = false;
    bool mIsInteger = true;
    std::uint64_t mDigits = 0;     ///< all digits without the dot, as long as they fit
    std::int64_t mDigitCount = 0;  ///< digits behind leading zeros
    std::int64_t mExponent = 0;    ///< power of ten that belongs to mDigits

    const char* readDigits(const char* position, const char* end) {
        const char* begin = position;
        for (; isDigit(position, end); ++position) {
            mDigits = mDigits * 10 + static_cast<std::uint64_t>(*position - '0');
        }
        mDigitCount += position - begin;
        return position;
    }

    /// Behind the integer part; null when there is none.
    const char* readIntegerPart(const char* position, const char* end) {
        mIsNegative = position != end && *position == '-';
        position += static_cast<int>(mIsNegative);
        if (!isDigit(position, end)) {
            return nullptr;
        }
        return *position == '0' ? position + 1 : readDigits(position, end);
    }

    const char* readFraction(const char* position, const char* end) {
        if (position == end || *position != '.' || !isDigit(position + 1, end)) {
            return position;
        }
        mIsInteger = false;
        const char* first = position + 1;
        while (mDigitCount == 0 && first != end && *first == '0') {
            ++first;
        }
        const char* behind = readDigits(first, end);
        mExponent -= behind - (position + 1);
        return behind;
    }

    const char* readExponent(const char* position, const char* end) {
        if (position == end || (*position != 'e' && *position != 'E')) {
            return position;
        }
        const char* digits = position + 1;
        const bool isNegative = digits != end && *digits == '-';
        digits += static_cast<int>(digits != end && (*digits == '-' || *digits == '+'));
        if (!isDigit(digits, end)) {
            return position;
        }
        mIsInteger = false;
        constexpr std::int64_t sEnough = std::int64_t{1} << 40;
        std::int64_t exponent = 0;
        for (; isDigit(digits, end); ++digits) {
            exponent = std::min(exponent * 10 + (*digits - '0'), sEnough);
        }
        mExponent += isNegative ? -exponent : exponent;
        return digits;
    }

    bool fitsInteger() const {
        constexpr auto sMax = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
        return mIsInteger && mDigitCount <= sMaxExactDigits &&
               mDigits <= sMax + static_cast<std::uint64_t>(mIsNegative);
    }

    std::int64_t toInteger() const { return static_cast<std::int64_t>(mIsNegative ? 0 - mDigits : mDigits); }

    double toReal(const char* end) const {
        constexpr auto& sPowers = JsonNumber::sPowersOfTen;
        constexpr auto sMaxPower = static_cast<std::int64_t>(sPowers.size()) - 1;
        constexpr std::uint64_t sMaxMantissa = std::uint64_t{1} << 53;
        if (mDigitCount <= sMaxExactDigits && mDigits <= sMaxMantissa && mExponent >= -sMaxPower &&
            mExponent <= sMaxPower) {
            // Both operands are exact, so the one rounding of the operation is the right one.
            const auto mantissa = static_cast<double>(mDigits);
            const double magnitude = mExponent < 0 ? mantissa / sPowers[static_cast<std::size_t>(-mExponent)]
                                                   : mantissa * sPowers[static_cast<std::size_t>(mExponent)];
            return mIsNegative ? -magnitude : magnitude;
        }
        double number = 0.0;
        if (std::from_chars(mBegin, end, number).ec == std::errc::result_out_of_range) {
            number = mDigitCount + mExponent > 0 ? std::numeric_limits<double>::infinity() : 0.0;
            number = mIsNegative ? -number : number;
        }
        return number;
    }
};

}  // namespace

JsonNumber JsonNumber::parse(const char* begin, const char* end) {
    JsonNumber number;
    Decimal decimal{begin};
    const char* position = decimal.readIntegerPart(begin, end);
    if (position == nullptr) {
        return number;
    }
    position = decimal.readExponent(decimal.readFraction(position, end), end);
    number.mEnd = position;
    number.mIsInteger = decimal.fitsInteger();
    if (number.mIsInteger) {
        number.mInteger = decimal.toInteger();
    } else {
        number.mReal = decimal.toReal(position);
    }
    return number;
}

}  // namespace kt::encoding
