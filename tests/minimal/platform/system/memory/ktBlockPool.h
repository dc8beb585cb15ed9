#pragma once

/// @file
/// Storage of the minimal platform: the heap.

#include "platform/system/ktSystemExport.h"

#include <cstddef>
#include <memory>
#include <new>

namespace kt {

class ktBlockPool {
public:
    static void* allocate(std::size_t size) { return ::operator new(size); }
    static void release(void* block, std::size_t /*size*/) noexcept { ::operator delete(block); }
    static void* allocateObject(std::size_t size) { return ::operator new(size); }
    static void releaseObject(void* block) noexcept { ::operator delete(block); }
    static std::size_t giveBackUnused() noexcept { return 0; }
};

template <typename T>
using ktPoolAllocator = std::allocator<T>;

}  // namespace kt
