#pragma once

/// @file
/// Allocation from the block pool without a call.

#include "platform/system/memory/ktBlockPool.h"

#if defined(__SANITIZE_ADDRESS__)
#define KT_POOL_USES_HEAP 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KT_POOL_USES_HEAP 1
#endif
#endif

namespace kt::impl {

#ifdef KT_POOL_USES_HEAP

inline void* allocateFromPool(std::size_t size) { return ktBlockPool::allocate(size); }

#else

/// Blocks are aligned to this, and their sizes are multiples of it.
inline constexpr std::size_t sBlockAlignment = 16;

/// The calling thread's supply. Trivial, so that no access needs a check for initialisation; the initial-exec model
/// saves the call that looks up the thread's copy.
extern constinit thread_local ktBlockSupply sThreadSupply [[gnu::visibility("hidden"), gnu::tls_model("initial-exec")]];

/// The same as ktBlockPool::allocate().
inline void* allocateFromPool(std::size_t size) {
    const std::size_t rounded = (size + sBlockAlignment - 1) & ~(sBlockAlignment - 1);
    ktBlockSupply& supply = sThreadSupply;
    if (size == 0 || size > ktBlockPool::sMaxBlockSize ||
        static_cast<std::size_t>(supply.mEnd - supply.mCursor) < rounded) [[unlikely]] {
        return ktBlockPool::allocate(size);
    }
    void* block = supply.mCursor;
    supply.mCursor += rounded;
    ++supply.mHandedOut;
    return block;
}

#endif

}  // namespace kt::impl
