#pragma once

/// @file
/// Memory of a worker process.

#include "tools/ktannot/files/FileDescriptor.h"

#include <cstdint>
#include <optional>
#include <string>

namespace ktannot {

/// Bounds the memory that one document may take in this process, from its first byte to its last output: what does not
/// fit is refused by the system, which std::bad_alloc tells.
class MemoryLimit {
public:
    /// @param limit  bytes for each document; by default 64 MiB and 64 times its file's size.
    explicit MemoryLimit(std::optional<std::uint64_t> limit);

    /// @param path  the document's file; empty for standard input.
    void begin(const std::string& path);
    void end();

private:
    std::uint64_t getUsed() const;

    std::optional<std::uint64_t> mLimit;
    FileDescriptor mStatus;
};

}  // namespace ktannot
