#pragma once

/// @file
/// Colours of maps.

#include "platform/wm4/Wm4Vector3.h"

#include <string_view>

namespace ktLegacy::reading {

/// Sets a colour (red, green, blue) from six hexadecimal digits, read as leniently as documents rely on; an empty text
/// keeps the colour. False, with the colour kept, when the text is no colour.
bool readColor(std::string_view text, Wm4::Vector3<unsigned char>& color);

}  // namespace ktLegacy::reading
