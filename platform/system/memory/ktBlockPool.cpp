#include "platform/system/memory/ktBlockPool.h"

#include "platform/system/memory/ktBlockPool_p.h"

#include <sys/mman.h>

#include <atomic>
#include <cstdint>
#include <mutex>
#include <utility>

namespace kt {

// What the pool saves: benchmarks/RESULTS.md, block pool.

#ifdef KT_POOL_USES_HEAP

void* ktBlockPool::allocate(std::size_t size) { return ::operator new(size); }

void ktBlockPool::release(void* block, std::size_t /*size*/) noexcept { ::operator delete(block); }

void* ktBlockPool::allocateObject(std::size_t size) { return ::operator new(size); }

void ktBlockPool::releaseObject(void* block) noexcept { ::operator delete(block); }

std::size_t ktBlockPool::giveBackUnused() noexcept { return 0; }

void ktBlockPool::Releases::add(void* block, std::size_t size) noexcept { release(block, size); }

void ktBlockPool::Releases::countDownChunk() noexcept {}

ktBlockPool::Scratch::~Scratch() = default;

// Every block is to be released.
void ktBlockPool::Scratch::enter() noexcept {
    mSupply.mIsScattered = true;
    mIsEntered = true;
}

void ktBlockPool::Scratch::leave() noexcept { mIsEntered = false; }

void ktBlockPool::Scratch::rewind() noexcept {}

#else

constinit thread_local impl::ktBlockSupply impl::sThreadSupply{};

namespace {

constexpr std::size_t sChunkSize = 256 * std::size_t{1024};
constexpr std::size_t sPageSize = 4096;
constexpr std::size_t sAlignment = impl::sBlockAlignment;
/// Chunks kept as they are for the next document: 64 MiB.
constexpr std::size_t sMaxWarmChunks = 256;
/// Chunks kept beyond these, up to 1 GiB, are offered to the system, which takes their pages when it needs memory;
/// until then they are used again without the cost of fresh pages.
constexpr std::size_t sMaxOfferedChunks = 4096;
/// Stands for the blocks that the owner of a chunk may still hand out: more than fit a chunk, so that the count cannot
/// reach 0 before the owner has given up its share.
constexpr std::int64_t sOwnerShare = std::int64_t{1} << 40;

/// Head of a chunk. A chunk lies at a multiple of its size, so that a block's address leads to its chunk.
struct alignas(sAlignment) Chunk {
    /// Blocks in use; while a thread owns the chunk, sOwnerShare minus the blocks released so far.
    std::atomic<std::int64_t> mLiveCount;
    Chunk* mNextFree;
};

using Supply = impl::ktBlockSupply;
using impl::sThreadSupply;

[[gnu::tls_model("initial-exec")]] constinit thread_local bool sIsThreadEnding = false;

/// Chunks without blocks. Guarded by sCacheMutex.
struct ChunkList {
    Chunk* mFirst;
    std::size_t mCount;

    void put(Chunk* chunk) {
        chunk->mNextFree = mFirst;
        mFirst = chunk;
        ++mCount;
    }
    /// Null when there is none.
    Chunk* take() {
        Chunk* chunk = mFirst;
        if (chunk != nullptr) {
            mFirst = chunk->mNextFree;
            --mCount;
        }
        return chunk;
    }
};

constinit std::mutex sCacheMutex;
constinit ChunkList sWarmChunks{};
constinit ChunkList sOfferedChunks{};

Chunk* takeCachedChunk() {
    const std::lock_guard lock(sCacheMutex);
    Chunk* chunk = sWarmChunks.take();
    return chunk != nullptr ? chunk : sOfferedChunks.take();
}

void recycle(Chunk* chunk) noexcept {
    const std::lock_guard lock(sCacheMutex);
    if (sWarmChunks.mCount < sMaxWarmChunks) {
        sWarmChunks.put(chunk);
    } else if (sOfferedChunks.mCount < sMaxOfferedChunks) {
        // All but the first page, which holds the head.
        ::madvise(reinterpret_cast<std::byte*>(chunk) + sPageSize, sChunkSize - sPageSize, MADV_FREE);
        sOfferedChunks.put(chunk);
    } else {
        ::munmap(chunk, sChunkSize);
    }
}

/// A fresh chunk at a multiple of its size.
Chunk* mapChunk() {
    void* memory = ::mmap(nullptr, 2 * sChunkSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) {
        throw std::bad_alloc();
    }
    auto* begin = static_cast<std::byte*>(memory);
    const std::size_t before = (sChunkSize - reinterpret_cast<std::uintptr_t>(begin) % sChunkSize) % sChunkSize;
    if (before != 0) {
        ::munmap(begin, before);
    }
    ::munmap(begin + before + sChunkSize, sChunkSize - before);
#ifdef MADV_POPULATE_WRITE
    // A process that has mapped some chunks loads a large document and will fill the next ones, too: all pages at once
    // take a fraction of the time of their faults. Kernels that do not know the advice refuse it without harm.
    constexpr int sSingleChunks = 8;
    static constinit std::atomic<int> sMappedCount{0};
    if (sMappedCount.load(std::memory_order_relaxed) < sSingleChunks) {
        sMappedCount.fetch_add(1, std::memory_order_relaxed);
    } else {
        ::madvise(begin + before, sChunkSize, MADV_POPULATE_WRITE);
    }
#endif
    return new (begin + before) Chunk{};
}

Chunk* acquireChunk() {
    Chunk* chunk = takeCachedChunk();
    if (chunk == nullptr) {
        chunk = mapChunk();
    }
    chunk->mLiveCount.store(sOwnerShare, std::memory_order_relaxed);
    return chunk;
}

void countDown(Chunk* chunk, std::int64_t count) noexcept {
    if (chunk->mLiveCount.fetch_sub(count, std::memory_order_acq_rel) == count) {
        recycle(chunk);
    }
}

/// Gives up the chunk of a supply: from now on it lives as long as its blocks.
void retire(Supply& own) noexcept {
    if (own.mChunk != nullptr) {
        countDown(static_cast<Chunk*>(own.mChunk), sOwnerShare - own.mHandedOut);
        own = {nullptr, nullptr, nullptr, 0, true};
    }
}

/// Gives up the chunk of a thread that ends.
struct ThreadEnd {
    ~ThreadEnd() {
        sIsThreadEnding = true;
        retire(sThreadSupply);
    }
};

Chunk* chunkOf(void* block) {
    constexpr auto sChunkMask = ~(static_cast<std::uintptr_t>(sChunkSize) - 1);
    return reinterpret_cast<Chunk*>(reinterpret_cast<std::uintptr_t>(block) & sChunkMask);
}

std::byte* blocksOf(Chunk* chunk) { return reinterpret_cast<std::byte*>(chunk) + sizeof(Chunk); }

/// A block from a fresh chunk, which becomes the supply's own.
[[gnu::noinline]] void* allocateFromNewChunk(Supply& own, std::size_t size) {
    Chunk* chunk = acquireChunk();
    retire(own);
    own.mChunk = chunk;
    own.mCursor = blocksOf(chunk) + size;
    own.mEnd = reinterpret_cast<std::byte*>(chunk) + sChunkSize;
    own.mHandedOut = 1;
    if (sIsThreadEnding) {
        // Other thread-local objects still run their destructors and nobody would give up the chunk later.
        retire(own);
    } else {
        static thread_local const ThreadEnd sThreadEnd;
        static_cast<void>(&sThreadEnd);
    }
    return blocksOf(chunk);
}

}  // namespace

void* ktBlockPool::allocate(std::size_t size) {
    if (size > sMaxBlockSize) [[unlikely]] {
        sThreadSupply.mIsScattered = true;
        return ::operator new(size);
    }
    // At least one unit, so that every block lies inside its chunk.
    size = size == 0 ? sAlignment : (size + sAlignment - 1) & ~(sAlignment - 1);
    Supply& own = sThreadSupply;
    if (static_cast<std::size_t>(own.mEnd - own.mCursor) < size) [[unlikely]] {
        return allocateFromNewChunk(own, size);
    }
    void* block = own.mCursor;
    own.mCursor += size;
    ++own.mHandedOut;
    return block;
}

void ktBlockPool::release(void* block, std::size_t size) noexcept {
    if (size > sMaxBlockSize) [[unlikely]] {
        ::operator delete(block);
    } else if (block != nullptr) {
        countDown(chunkOf(block), 1);
    }
}

void* ktBlockPool::allocateObject(std::size_t size) {
    if (size > sMaxBlockSize) [[unlikely]] {
        // At a multiple of the chunk size, where no block of a chunk lies: its release tells them apart by that.
        sThreadSupply.mIsScattered = true;
        return ::operator new (size, std::align_val_t{sChunkSize});
    }
    return allocate(size);
}

void ktBlockPool::releaseObject(void* block) noexcept {
    if (block == nullptr) {
        return;
    }
    Chunk* chunk = chunkOf(block);
    if (block == static_cast<void*>(chunk)) [[unlikely]] {
        ::operator delete (block, std::align_val_t{sChunkSize});
    } else {
        countDown(chunk, 1);
    }
}

std::size_t ktBlockPool::giveBackUnused() noexcept {
    std::size_t bytes = 0;
    while (Chunk* chunk = takeCachedChunk()) {
        ::munmap(chunk, sChunkSize);
        bytes += sChunkSize;
    }
    return bytes;
}

void ktBlockPool::Releases::add(void* block, std::size_t size) noexcept {
    if (size > sMaxBlockSize) [[unlikely]] {
        ::operator delete(block);
        return;
    }
    Chunk* chunk = chunkOf(block);
    if (chunk != mChunk) {
        countDownChunk();
        mChunk = chunk;
    }
    ++mCount;
}

void ktBlockPool::Releases::countDownChunk() noexcept {
    if (mChunk != nullptr) {
        countDown(static_cast<Chunk*>(mChunk), mCount);
        mCount = 0;
    }
}

ktBlockPool::Scratch::~Scratch() {
    leave();
    retire(mSupply);
}

void ktBlockPool::Scratch::enter() noexcept {
    std::swap(sThreadSupply, mSupply);
    mIsEntered = true;
}

void ktBlockPool::Scratch::leave() noexcept {
    if (mIsEntered) {
        std::swap(sThreadSupply, mSupply);
        mIsEntered = false;
    }
}

void ktBlockPool::Scratch::rewind() noexcept {
    if (mSupply.mChunk != nullptr) {
        auto* chunk = static_cast<Chunk*>(mSupply.mChunk);
        chunk->mLiveCount.store(sOwnerShare, std::memory_order_relaxed);
        mSupply.mCursor = blocksOf(chunk);
        mSupply.mHandedOut = 0;
    }
    mSupply.mIsScattered = false;
}

#endif

}  // namespace kt
