#pragma once

/// @file
/// What variants own: texts, and blocks of elements with all that lies below them.

#include "platform/system/memory/ktBlockPool_p.h"
#include "platform/system/variant/ktVariantBlock.h"
#include "platform/system/variant/ktVariantListImpl.h"
#include "platform/system/variant/ktVariantMapImpl.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <stdexcept>
#include <string_view>

namespace kt::impl {

/// Allocation, destruction, copy and comparison of variants' storage. None of it recurses: trees of variants may be of
/// any depth.
///
/// Keys and variants are relocated by copying their bytes.
class ktVariantStorage {
public:
    using Entry = ktVariant::ktVariantMapImpl::Entry;
    using Kind = ktVariant::Kind;

    ktVariantStorage() = delete;

    /// Keeps a copy of a text of any length: pointer and length in the first 14 bytes.
    static void storeLongText(std::byte* bytes, std::string_view text);
    static std::string_view loadLongText(const std::byte* bytes) noexcept;
    static void releaseText(std::string_view text) noexcept;

    /// A block without elements. Throws std::length_error beyond 32 bits.
    static ktVariantBlock* allocateBlock(Kind kind, std::size_t capacity) {
        if (capacity > std::numeric_limits<std::uint32_t>::max()) {
            throw std::length_error("too many elements for a variant");
        }
        void* memory = allocateFromPool(getBlockBytes(kind, capacity));
        return new (memory) ktVariantBlock{0, static_cast<std::uint32_t>(capacity)};
    }
    /// Releases the block only; its elements are gone already.
    static void releaseBlock(Kind kind, ktVariantBlock* block) noexcept;
    /// The block moved to one of at least that capacity; block may be null.
    static ktVariantBlock* growBlock(Kind kind, ktVariantBlock* block, std::size_t minCapacity);

    /// Destroys a block and everything below it.
    static void destroyTree(Kind kind, ktVariantBlock* block) noexcept;
    /// A deep copy; null gives null.
    static ktVariantBlock* copyTree(Kind kind, const ktVariantBlock* block);
    static bool equalTrees(Kind kind, const ktVariantBlock* a, const ktVariantBlock* b);
    static bool equalValues(const ktVariant& a, const ktVariant& b);

    static std::size_t getElementSize(Kind kind) { return kind == Kind::Map ? sizeof(Entry) : sizeof(ktVariant); }

    static std::size_t getBlockBytes(Kind kind, std::size_t capacity) {
        return sizeof(ktVariantBlock) + capacity * getElementSize(kind);
    }

    static ktVariantBlock* getBlock(const ktVariant& container) { return container.load<ktVariantBlock*>(0); }

private:
    class TreeDestruction;
    class TreeCopy;
    class TreeComparison;

    static ktVariant& valueAt(Kind kind, ktVariantBlock* block, std::size_t index) {
        return kind == Kind::Map ? block->elements<Entry>()[index].second : block->elements<ktVariant>()[index];
    }
    static const ktVariant& valueAt(Kind kind, const ktVariantBlock* block, std::size_t index) {
        return kind == Kind::Map ? block->elements<Entry>()[index].second : block->elements<ktVariant>()[index];
    }
};

}  // namespace kt::impl
