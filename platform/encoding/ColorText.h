#pragma once

/// @file
/// Colours as SVG writes them.

#include "platform/encoding/Hex.h"

#include <array>
#include <string_view>

namespace kt::encoding {

/// A colour as "#RRGGBB", without memory of its own.
class ColorText {
public:
    /// @param color  has red, green and blue as x, y and z, 0 to 255.
    template <typename Color>
    explicit ColorText(const Color& color) {
        std::size_t position = 1;
        for (const unsigned component : {color.x, color.y, color.z}) {
            mText[position++] = sUpperHexDigits[component >> 4U];
            mText[position++] = sUpperHexDigits[component & 15U];
        }
    }

    std::string_view get() const { return {mText.data(), mText.size()}; }

private:
    std::array<char, 7> mText{'#'};
};

}  // namespace kt::encoding
