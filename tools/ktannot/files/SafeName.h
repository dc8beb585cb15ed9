#pragma once

/// @file
/// File names from names of documents.

#include <string>
#include <string_view>

namespace ktannot {

/// A file name that any file system takes, from the name of a view: letters and digits of any script, and a few marks,
/// stay; everything else becomes "_"; blanks and dots at the edges go; longer names are cut at a character. An empty
/// result is "view".
/// @param name  any bytes.
std::string makeSafeFileName(std::string_view name);

}  // namespace ktannot
