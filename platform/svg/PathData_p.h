#pragma once

/// @file
/// Path data of SVG.

#include "platform/svg/Path.h"

namespace kt::svg {

class TextBuffer;

bool isFinite(const Path& path);

/// Appends the commands as the text of a "d" attribute, in absolute coordinates moved by the offset.
void appendPathData(TextBuffer& buffer, const Path& path, double offsetX, double offsetY, int decimals);

}  // namespace kt::svg
