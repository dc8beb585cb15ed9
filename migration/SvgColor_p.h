#pragma once

/// @file
/// Colours as SVG writes them.

#include "platform/wm4/Wm4Vector3.h"

#include <string>

namespace ktLegacy::migration {

/// Paint of items without fill or outline.
inline constexpr const char* sNoPaint = "none";
inline constexpr const char* sBlackPaint = "#000000";

/// "#" and two upper-case hexadecimal digits each for red, green and blue.
std::string colorToSvgString(const Wm4::Vector3<unsigned char>& color);

}  // namespace ktLegacy::migration
