#pragma once

/// @file
/// Documents from the inputs of the command line.

#include "tools/ktannot/batch/Input.h"
#include "tools/ktannot/report/SourceDocument.h"

#include <cstdint>
#include <optional>
#include <string>

namespace ktannot {

/// Reads an input, whatever it is. Throws nothing: what finds no memory is unreadable.
/// @param memoryLimit  bytes that reading may take.
SourceDocument loadDocument(const Input& input, std::optional<std::uint64_t> memoryLimit);

/// A document that cannot be read, for a reason of which the sentence is known.
SourceDocument makeUnreadableDocument(const Input& input, ktLegacy::ktFindingCode code, std::string what);

}  // namespace ktannot
