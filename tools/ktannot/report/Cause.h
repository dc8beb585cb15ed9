#pragma once

/// @file
/// What messages have in common.

#include "document/ktLegacyFinding.h"

#include <string>
#include <string_view>

namespace ktannot {

/// What findings of one code have in common, in words.
std::string findCause(const ktLegacy::ktLegacyFinding& finding);

/// A message without what differs from one document to the next: what stands in quotes, and numbers. Messages of one
/// cause give the same text.
std::string findCause(std::string_view message);

}  // namespace ktannot
