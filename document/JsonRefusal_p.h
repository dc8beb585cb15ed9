#pragma once

/// @file
/// Why a text is no variant document.

#include "document/ktLegacyFinding.h"
#include "platform/system/json/ktVariantJson.h"

#include <cstddef>
#include <span>

namespace ktLegacy {

/// The finding for a text that the JSON reader refused. It names the cause where there is a better one than JSON's
/// grammar: another encoding, bytes that are no text.
ktLegacyFinding makeJsonRefusal(std::span<const std::byte> bytes, const kt::ktJsonError& error);

}  // namespace ktLegacy
