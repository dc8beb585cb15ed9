#pragma once

/// @file
/// Storage for many small blocks.

#include "platform/system/ktSystemExport.h"

#include <cstddef>
#include <cstdint>
#include <new>

namespace kt {

namespace impl {

/// Where a thread takes its blocks from.
struct ktBlockSupply {
    std::byte* mCursor;
    std::byte* mEnd;
    void* mChunk;
    std::int64_t mHandedOut;  ///< blocks of the chunk
    bool mIsScattered;        ///< blocks were handed out that lie elsewhere
};

}  // namespace impl

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

    /// The same for blocks whose release does not know the size; one above sMaxBlockSize takes a multiple of 256 KiB of
    /// addresses.
    static void* allocateObject(std::size_t size);
    /// Releases a block of allocateObject(); null is allowed.
    static void releaseObject(void* block) noexcept;

    /// Gives the chunks that hold no block and are kept for the next document back to the system: up to 64 MiB that
    /// stay in memory, and up to 1 GiB that the system may take when it needs it. The last terminateKtSystem() does the
    /// same. Safe to call from several threads.
    /// @return  the bytes of address space given back.
    static std::size_t giveBackUnused() noexcept;

    static constexpr std::size_t sMaxBlockSize = 4096;

    /// Releases many blocks: those of one chunk that come one after the other are counted down together, at the latest
    /// by the destructor. For one thread.
    class KT_SYSTEM_API Releases {
    public:
        Releases() noexcept = default;
        Releases(const Releases&) = delete;
        Releases& operator=(const Releases&) = delete;
        ~Releases() { countDownChunk(); }

        /// Releases a block, which is not null; size as it was asked for.
        void add(void* block, std::size_t size) noexcept;

    private:
        void countDownChunk() noexcept;

        void* mChunk = nullptr;
        std::int64_t mCount = 0;
    };

    /// Memory for blocks that die soon and together: while a thread has entered a scratch, its blocks come from there,
    /// and after a rewind the same memory, which is still in the cache, is handed out again. They are blocks like all
    /// others. Entered by one thread at a time.
    class KT_SYSTEM_API Scratch {
    public:
        Scratch() noexcept = default;
        Scratch(const Scratch&) = delete;
        Scratch& operator=(const Scratch&) = delete;
        /// Leaves the scratch. Blocks in use stay valid.
        ~Scratch();

        void enter() noexcept;
        /// Blocks come from where they came before. Does nothing when the scratch is not entered.
        void leave() noexcept;

        /// Whether blocks in use need not be released before a rewind. Not while the scratch is entered.
        bool isCompact() const noexcept { return !mSupply.mIsScattered; }
        /// Begins anew: the blocks handed out so far are no longer used, and were released unless the scratch is
        /// compact. Not while it is entered.
        void rewind() noexcept;

    private:
        impl::ktBlockSupply mSupply{};
        bool mIsEntered = false;
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
