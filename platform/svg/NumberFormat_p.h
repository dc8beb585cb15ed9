#pragma once

/// @file
/// Numbers as text.

namespace kt::svg {

/// Room that one number needs at most.
constexpr int sMaxNumberLength = 32;
/// Decimals of coordinates in millimetres: the text differs from the number by at most 0.0005 mm.
constexpr int sCoordinateDecimals = 3;
/// Most decimals that are written; numbers that need more are written in shortest exact form.
constexpr int sMaxDecimals = 9;

/// Writes a finite number with at most this many decimals (0 to sMaxDecimals; above: as many as it takes), rounded to
/// nearest, without needless zeros and never as "-0". Numbers too large for that are written in shortest exact form.
/// Does not depend on the locale.
/// @param out  room for sMaxNumberLength characters.
/// @return the end of what was written.
char* formatNumber(char* out, double value, int decimals);

/// formatNumber with sCoordinateDecimals, for the bulk of a drawing.
char* formatCoordinate(char* out, double value);

/// Writes a factor that multiplies coordinates: with sMaxDecimals decimals, so that coordinates up to a kilometre keep
/// their tolerance; small and large factors in shortest exact form.
char* formatFactor(char* out, double value);

}  // namespace kt::svg
