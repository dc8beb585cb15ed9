#pragma once

/// @file
/// What drawings may lack.

#include <optional>
#include <string_view>

namespace ktannot {

/// The bits of ktLegacy::ktViewDrawing::Accepted for a comma-separated list of the words of --accept: "view-metadata",
/// "known-metadata", "other-metadata", "all" (these three), "missing-pictures" and "failed-annotations"; nothing when
/// another word is among them.
std::optional<int> parseAcceptedLosses(std::string_view list);

}  // namespace ktannot
