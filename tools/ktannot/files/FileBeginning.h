#pragma once

/// @file
/// What a file begins with.

#include <string>

namespace ktannot {

/// The first bytes of a regular file, at most some hundred: enough to recognise what the tool writes. Empty when it
/// cannot be read.
std::string readBeginning(const std::string& path);

}  // namespace ktannot
