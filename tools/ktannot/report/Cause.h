#pragma once

/// @file
/// What messages have in common.

#include <string>
#include <string_view>

namespace ktannot {

/// A message without what differs from one document to the next: what stands in quotes, and numbers. Messages of one
/// cause give the same text.
/// @param remedy  word of --accept that belongs to the message; may be empty.
std::string findCause(std::string_view message, std::string_view remedy = {});

}  // namespace ktannot
