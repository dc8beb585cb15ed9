#pragma once

/// @file
/// Counts for people.

#include <cstddef>
#include <string>

namespace ktannot {

/// A count with its noun, in the plural where needed: "1 view", "3 views".
inline std::string countOf(std::size_t count, const std::string& noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

}  // namespace ktannot
