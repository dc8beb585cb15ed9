#pragma once

/// @file
/// Findings for people.

#include "document/ktLegacyFinding.h"

#include <span>
#include <string>
#include <vector>

namespace ktannot {

/// "view 2 'MBD_A', annotation 17 'Note (22)': invalid 'color' field", safe to show; names are cut.
std::string describeFinding(const ktLegacy::ktLegacyFinding& finding);

/// A line for each finding, in order; of those with the same code only the first few, and with the last of them how
/// many there are more.
std::vector<std::string> describeFindings(std::span<const ktLegacy::ktLegacyFinding> findings);

}  // namespace ktannot
