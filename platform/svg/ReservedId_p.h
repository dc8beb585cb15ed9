#pragma once

/// @file
/// Ids that the writer gives.

#include <string_view>

namespace kt::svg {

/// Whether an id is a letter and a number, as the writer's own ids are.
inline bool isNumberedId(std::string_view id, char letter) {
    return id.size() > 1 && id.front() == letter && id.find_first_not_of("0123456789", 1) == std::string_view::npos;
}

}  // namespace kt::svg
