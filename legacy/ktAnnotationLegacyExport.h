#pragma once

/// @file
/// Marks what libktAnnotationLegacy exports; everything else stays hidden. The mark is the same for those who build the
/// library and for those who use it: run-time types must be the same objects on both sides.

#if __cplusplus < 202002L
#error "libktAnnotationLegacy needs C++20 or later (-std=c++20)"
#endif

#define KT_ANNOTATION_LEGACY_API __attribute__((visibility("default")))
