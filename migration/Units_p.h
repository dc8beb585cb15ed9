#pragma once

/// @file
/// Units of the migration.

namespace ktLegacy::migration {

/// Drawing units (millimetres) of one em, the unit of legacy sizes: an eighth of an inch, the usual height of
/// characters in technical drawings when the legacy model was made.
inline constexpr float sUnitsPerEm = 3.175F;

}  // namespace ktLegacy::migration
