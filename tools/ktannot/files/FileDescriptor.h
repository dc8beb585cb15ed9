#pragma once

/// @file
/// Owner of a file descriptor.

#include <unistd.h>

#include <utility>

namespace ktannot {

/// Closes its descriptor at the end.
class FileDescriptor {
public:
    FileDescriptor() = default;
    /// @param descriptor  as open() gives it: below 0 means that it failed.
    explicit FileDescriptor(int descriptor) : mDescriptor(descriptor) {}
    FileDescriptor(FileDescriptor&& other) noexcept : mDescriptor(std::exchange(other.mDescriptor, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(mDescriptor, other.mDescriptor);
        return *this;
    }
    ~FileDescriptor() {
        if (isOpen()) {
            close(mDescriptor);
        }
    }

    bool isOpen() const { return mDescriptor >= 0; }
    int get() const { return mDescriptor; }
    /// Hands the descriptor over.
    int release() { return std::exchange(mDescriptor, -1); }

private:
    int mDescriptor = -1;
};

}  // namespace ktannot
