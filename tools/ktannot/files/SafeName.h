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

/// The path with a suffix behind its last name. A name that would be longer than file systems have them is cut, with a
/// hash of the whole name in place of what is missing.
std::string addSuffix(const std::string& path, std::string_view suffix);

}  // namespace ktannot
