#pragma once

/// @file
/// Storage for many small blocks.

#include "platform/system/ktSystemExport.h"

#include <cstddef>
#include <cstdint>
#include <new>

namespace kt {

/// Hands out small blocks from chunks: allocation advances a cursor in the calling thread's chunk, release counts down
/// the chunk's live blocks, and a chunk without live blocks is used again or given back. Meant for documents, whose
/// objects are made together and die together; a single long-lived block keeps its chunk. Blocks may be released on
/// another thread than their own. Builds with AddressSanitizer pass every block to the heap, so that errors show.
class KT_SYSTEM_API ktBlockPool {
public:
    ktBlockPool() = delete;

    /// A block of size bytes, aligned for any scalar type up to 16 bytes; blocks above sMaxBlockSize come from the
    /// heap. Throws std::bad_alloc.
    static void* allocate(std::size_t size);
    /// Releases a block; size as it was asked for.
    static void release(void* block, std::size_t size) noexcept;

    static constexpr std::size_t sMaxBlockSize = 4096;

    /// Releases many blocks: those of one chunk that come one after the other are counted down together, at the latest
    /// by the destructor. For one thread.
    class KT_SYSTEM_API Releases {
    public:
        Releases() noexcept = default;
        Releases(const Releases&) = delete;
        Releases& operator=(const Releases&) = delete;
        ~Releases() { settleChunk(); }

        /// Releases a block, which is not null; size as it was asked for.
        void add(void* block, std::size_t size) noexcept;

    private:
        void settleChunk() noexcept;

        void* mChunk = nullptr;
        std::int64_t mCount = 0;
    };
};

/// Puts the elements of a standard container into the block pool.
template <typename T>
class ktPoolAllocator {
public:
    using value_type = T;

    ktPoolAllocator() noexcept = default;
    template <typename U>
    ktPoolAllocator(const ktPoolAllocator<U>&) noexcept {}

    T* allocate(std::size_t count) {
        if (count > static_cast<std::size_t>(-1) / sizeof(T)) {
            throw std::bad_array_new_length();
        }
        return static_cast<T*>(ktBlockPool::allocate(count * sizeof(T)));
    }
    void deallocate(T* block, std::size_t count) noexcept { ktBlockPool::release(block, count * sizeof(T)); }

    template <typename U>
    bool operator==(const ktPoolAllocator<U>&) const noexcept {
        return true;
    }
};

}  // namespace kt
