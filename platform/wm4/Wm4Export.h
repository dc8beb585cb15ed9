#pragma once

/// @file
/// Marks what libWm4Foundation exports; everything else stays hidden. The mark is the same for those who build the
/// library and for those who use it: run-time types must be the same objects on both sides.

#if __cplusplus < 202002L
#error "libWm4Foundation needs C++20 or later (-std=c++20)"
#endif

#define WM4_API __attribute__((visibility("default")))
