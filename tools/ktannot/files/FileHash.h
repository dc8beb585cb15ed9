#pragma once

/// @file
/// What tells a changed file from an unchanged one.

#include <ctime>
#include <string>

namespace ktannot {

/// SHA-256 of a file's bytes in lower-case hexadecimal; empty when it cannot be read.
std::string hashFile(const std::string& path);

/// A point in time as seconds since 1970.
inline double getSeconds(const timespec& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

}  // namespace ktannot
