#pragma once

/// @file
/// Version of a stream or document.

#include "platform/system/ktSystemExport.h"

#include <compare>
#include <cstdint>
#include <string>
#include <string_view>

namespace kt {

/// A version of two numbers, each 0 to 65535, that compares as one integer: major * 65536 + minor (6.15 is 0x6000F).
class KT_SYSTEM_API ktStreamVersion {
public:
    constexpr ktStreamVersion() = default;
    constexpr explicit ktStreamVersion(std::uint32_t packed) : mPacked(packed) {}
    constexpr ktStreamVersion(std::uint16_t major, std::uint16_t minor)
        : mPacked((static_cast<std::uint32_t>(major) << 16) | minor) {}
    /// From "major.minor": 1 to 5 digits, a dot, 1 to 5 digits, each number at most 65535. Anything else is 0.0.
    explicit ktStreamVersion(std::string_view text);

    constexpr std::uint32_t toInteger() const { return mPacked; }
    constexpr std::uint16_t getMajor() const { return static_cast<std::uint16_t>(mPacked >> 16); }
    constexpr std::uint16_t getMinor() const { return static_cast<std::uint16_t>(mPacked & 0xFFFFU); }
    /// "major.minor" in decimal.
    std::string toString() const;

    constexpr auto operator<=>(const ktStreamVersion&) const = default;

private:
    std::uint32_t mPacked = 0;
};

}  // namespace kt
