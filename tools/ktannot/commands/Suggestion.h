#pragma once

/// @file
/// What a mistyped word was meant to be.

#include <string>
#include <string_view>
#include <vector>

namespace ktannot {

/// The candidate that takes the fewest typing errors (letters left out, added, exchanged or swapped) to become the
/// word; empty when none is near.
std::string findNearest(std::string_view word, const std::vector<std::string>& candidates);

}  // namespace ktannot
