#pragma once

/// @file
/// Numbers in JSON's notation.

#include <cstdint>

namespace kt::impl {

/// A number read by JSON's grammar, whatever the locale.
struct ktJsonNumber {
    const char* mEnd = nullptr;  ///< behind the number; null when there is none
    bool mIsInteger = false;     ///< neither fraction nor exponent, and fits mInteger
    std::int64_t mInteger = 0;
    double mReal = 0.0;  ///< the value of all but integers; infinite when it is beyond double

    double toReal() const { return mIsInteger ? static_cast<double>(mInteger) : mReal; }

    /// The longest number at begin.
    static ktJsonNumber parse(const char* begin, const char* end);
};

}  // namespace kt::impl
