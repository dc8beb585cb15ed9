#pragma once

/// @file
/// Findings for programs.

#include "document/ktLegacyFinding.h"
#include "tools/ktannot/report/JsonWriter.h"

#include <span>

namespace ktannot {

/// "error", "warning" or "note".
const char* getSeverityWord(ktLegacy::ktFindingSeverity severity);

/// Writes the array of findings; views count from 1, annotations from 0, and what is not known is left out.
void writeFindingsJson(JsonWriter& json, std::span<const ktLegacy::ktLegacyFinding> findings);

}  // namespace ktannot
