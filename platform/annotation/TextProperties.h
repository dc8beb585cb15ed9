#pragma once

/// @file
/// Style of text.

#include "platform/wm4/Wm4Vector3.h"

#include <cstdint>
#include <string>

namespace kt::text {

/// Font, size, style and colour of text. Default-constructed: the default family, 3.175 units, upright, black.
struct TextProperties {
    /// Bits of mStyle.
    static constexpr std::uint8_t sBold = 1;
    static constexpr std::uint8_t sItalic = 2;

    bool isBold() const { return (mStyle & sBold) != 0; }
    bool isItalic() const { return (mStyle & sItalic) != 0; }

    bool operator==(const TextProperties&) const = default;

    std::string mFontName = "Arial";       ///< family name
    float mFontSize = 3.175F;              ///< the em, in drawing units
    Wm4::Vector3<unsigned char> mColor{};  ///< red, green, blue
    std::uint8_t mStyle = 0;
};

}  // namespace kt::text
