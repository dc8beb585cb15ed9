#pragma once

/// @file
/// Versions at which the stored form of legacy annotations changed.

#include "platform/system/stream/ktStreamVersion.h"

namespace ktLegacy::version {

// Newest first: what each version of streams and documents added.
//
//   6.27  views have metadata
//   6.22  leader heads, arrow directions, sub-annotations and annotation metadata; in variant documents one list for
//   all
//         annotations of a view, and leaders that are maps
//   6.17  measure leaders; segments have a type and a 16-bit length; first version of variant documents
//   6.15  text and raster annotations share one base record; raster annotations
//   6.14  text annotations have a name and a whole flags byte
//   6.13  oldest views that are read

inline constexpr kt::ktStreamVersion s6_13{6, 13};
inline constexpr kt::ktStreamVersion s6_14{6, 14};
inline constexpr kt::ktStreamVersion s6_15{6, 15};
inline constexpr kt::ktStreamVersion s6_17{6, 17};
inline constexpr kt::ktStreamVersion s6_22{6, 22};
inline constexpr kt::ktStreamVersion s6_27{6, 27};

}  // namespace ktLegacy::version
