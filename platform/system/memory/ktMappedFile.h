#pragma once

/// @file
/// Files in memory.

#include "platform/system/ktSystemExport.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace kt {

/// The bytes of a file, mapped for reading; what cannot be mapped, such as a pipe, is read. At least sPadding zero
/// bytes follow the content. A file must not be cut short while
/// it is mapped: touching what is gone ends the process.
class KT_SYSTEM_API ktMappedFile {
public:
    static constexpr std::size_t sPadding = 64;

    ktMappedFile() = default;
    ktMappedFile(const ktMappedFile&) = delete;
    ktMappedFile& operator=(const ktMappedFile&) = delete;
    ktMappedFile(ktMappedFile&& other) noexcept { swap(other); }
    ktMappedFile& operator=(ktMappedFile&& other) noexcept {
        ktMappedFile(static_cast<ktMappedFile&&>(other)).swap(*this);
        return *this;
    }
    ~ktMappedFile();

    /// How a regular file is held.
    enum class Access : std::uint8_t {
        Map,   ///< without a copy; the file must not be cut short meanwhile
        Copy,  ///< whatever becomes of the file, the bytes stay; files with holes are mapped all the same
    };

    /// What may be read of inputs that have no end of their own, such as pipes and devices, by default.
    static constexpr std::uint64_t sMaxPipeSize = std::uint64_t{1} << 30U;

    void swap(ktMappedFile& other) noexcept;

    /// Opens a file in place of the one held so far. False when that is not possible: error tells why in English and
    /// nothing is held.
    bool open(const std::string& path, std::string& error, Access access = Access::Map);
    /// The same with an open file, for example standard input; the descriptor stays the caller's.
    bool open(int descriptor, std::string& error, Access access = Access::Map);

    /// Whether the file was changed or cut short while it was copied: the bytes belong together no more.
    bool hasChanged() const { return mHasChanged; }

    std::span<const std::byte> getBytes() const { return {mBytes, mSize}; }

private:
    std::byte* mBytes = nullptr;
    std::size_t mSize = 0;
    std::size_t mMappedSize = 0;
    bool mHasChanged = false;
};

}  // namespace kt
