#pragma once

/// @file
/// Kinds of picture files.

#include <cstddef>
#include <string_view>

namespace kt::encoding {

/// Bytes of a file that are enough to tell its kind; a whole number of base64 groups.
inline constexpr std::size_t sPictureHeadSize = 12;

/// The media type of a PNG, JPEG, GIF or WebP file that begins so; empty for any other.
std::string_view getPictureType(std::string_view head);

/// Whether a file of one of these kinds has its end, and a size where its head tells one. What lies between is not
/// decoded.
bool isWholePicture(std::string_view file);

}  // namespace kt::encoding
