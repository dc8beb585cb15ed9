#pragma once

/// @file
/// Colours as SVG writes them.

#include "platform/wm4/Wm4Vector3.h"

#include <array>
#include <cstddef>
#include <string_view>

namespace kt {

/// A colour as "#RRGGBB", without memory of its own.
class ColorText {
public:
    /// @param color  red, green and blue.
    explicit ColorText(const Wm4::Vector3<unsigned char>& color) {
        constexpr std::string_view digits = "0123456789ABCDEF";
        std::size_t position = 1;
        for (const unsigned component : {color.x, color.y, color.z}) {
            mText[position++] = digits[component >> 4U];
            mText[position++] = digits[component & 15U];
        }
    }

    std::string_view get() const { return {mText.data(), mText.size()}; }

private:
    std::array<char, 7> mText{'#'};
};

}  // namespace kt
