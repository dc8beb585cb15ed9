#pragma once

/// @file
/// Versions at which the stored form of legacy annotations changed.

#include "platform/system/stream/ktStreamVersion.h"

namespace ktLegacy::version {

// Newest first: what each version of streams and documents added, and a document that shows it.
//
// clang-format off
//
//   6.27  views have metadata                                                samples/ctc_01_v627.json
//   6.22  leader heads, arrow directions, sub-annotations, metadata of       samples/catalogue_v622.json,
//         annotations; in variant documents one list for all annotations     samples/mixed_versions.json (6.17 to 7.1)
//         of a view, and leaders that are maps
//   6.17  measure leaders; segments have a type and a 16-bit length;         samples/mixed_versions.json
//         first version of variant documents
//   6.15  texts and rasters share one base record; first rasters             samples/symbols_from_617_v615.kts
//   6.14  texts have a name and a whole flags byte                           the records of tests/legacy/StreamRecordTest.cpp
//   6.13  oldest views that are read                                         samples/ctc_01_from_617_v613.kts
//   6.12  views are refused                                                  tests/data/documents/view_of_612.kts
//
// clang-format on

inline constexpr kt::ktStreamVersion s6_13{6, 13};
inline constexpr kt::ktStreamVersion s6_14{6, 14};
inline constexpr kt::ktStreamVersion s6_15{6, 15};
inline constexpr kt::ktStreamVersion s6_17{6, 17};
inline constexpr kt::ktStreamVersion s6_22{6, 22};
inline constexpr kt::ktStreamVersion s6_27{6, 27};

}  // namespace ktLegacy::version
