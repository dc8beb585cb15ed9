#include "platform/system/memory/ktBlockPool.h"
#include "platform/system/variant/ktVariantStorage_p.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <utility>
#include <vector>

namespace kt::impl {

namespace {

constexpr std::size_t sLowLengthOffset = 8;
constexpr std::size_t sHighLengthOffset = 12;

}  // namespace

void ktVariantStorage::storeLongText(std::byte* bytes, std::string_view text) {
    auto* copy = static_cast<char*>(allocateFromPool(text.size()));
    std::memcpy(copy, text.data(), text.size());
    const auto low = static_cast<std::uint32_t>(text.size());
    const auto high = static_cast<std::uint16_t>(std::uint64_t{text.size()} >> 32);
    std::memcpy(bytes, &copy, sizeof(copy));
    std::memcpy(bytes + sLowLengthOffset, &low, sizeof(low));
    std::memcpy(bytes + sHighLengthOffset, &high, sizeof(high));
}

std::string_view ktVariantStorage::loadLongText(const std::byte* bytes) noexcept {
    const char* text = nullptr;
    std::uint32_t low = 0;
    std::uint16_t high = 0;
    std::memcpy(&text, bytes, sizeof(text));
    std::memcpy(&low, bytes + sLowLengthOffset, sizeof(low));
    std::memcpy(&high, bytes + sHighLengthOffset, sizeof(high));
    return {text, static_cast<std::size_t>((std::uint64_t{high} << 32) | low)};
}

void ktVariantStorage::releaseText(std::string_view text) noexcept {
    ktBlockPool::release(const_cast<char*>(text.data()), text.size());
}

void ktVariantStorage::releaseBlock(Kind kind, ktVariantBlock* block) noexcept {
    ktBlockPool::release(block, getBlockBytes(kind, block->mCapacity));
}

ktVariantBlock* ktVariantStorage::growBlock(Kind kind, ktVariantBlock* block, std::size_t minCapacity) {
    constexpr std::size_t sFirstCapacity = 4;
    const std::size_t doubled = block == nullptr ? sFirstCapacity : std::size_t{block->mCapacity} * 2;
    ktVariantBlock* grown = allocateBlock(kind, std::max(doubled, minCapacity));
    if (block != nullptr) {
        std::memcpy(static_cast<void*>(grown + 1), static_cast<const void*>(block + 1),
                    block->mSize * getElementSize(kind));
        grown->mSize = block->mSize;
        releaseBlock(kind, block);
    }
    return grown;
}

/// Destroys a tree. The way back to a parent is kept in the parent itself, in the place of the child that is being
/// destroyed: elements go from the last to the first, so that place is always the parent's last element.
class ktVariantStorage::TreeDestruction {
public:
    void run(Kind kind, ktVariantBlock* block) noexcept {
        ktVariantBlock* parent = nullptr;
        Kind parentKind = Kind::Undefined;
        for (;;) {
            if (ktVariant* container = destroyLeaves(kind, block); container != nullptr) {
                ktVariantBlock* child = getBlock(*container);
                const Kind childKind = container->getKind();
                container->store(0, parent);
                container->setTag(static_cast<std::uint8_t>(parentKind));
                parent = std::exchange(block, child);
                parentKind = std::exchange(kind, childKind);
                continue;
            }
            prefetchBefore(block);
            mReleases.add(block, getBlockBytes(kind, block->mCapacity));
            if (parent == nullptr) {
                return;
            }
            block = parent;
            kind = parentKind;
            --block->mSize;
            const ktVariant& place = valueAt(kind, block, block->mSize);
            parent = getBlock(place);
            parentKind = place.getKind();
        }
    }

private:
    /// Destroys a block's elements from the last one on until that is a container with a block, which is the result and
    /// whose key is destroyed already. Null when there are no more elements.
    ktVariant* destroyLeaves(Kind kind, ktVariantBlock* block) noexcept {
        return kind == Kind::Map ? destroyLeaves<Entry>(block) : destroyLeaves<ktVariant>(block);
    }

    template <typename Element>
    ktVariant* destroyLeaves(ktVariantBlock* block) noexcept {
        auto* elements = block->elements<Element>();
        for (std::uint32_t size = block->mSize; size != 0; --size) {
            ktVariant& value = destroyKey(elements[size - 1]);
            if (!value.ownsStorage()) {
                continue;
            }
            if (value.isString()) {
                releaseText(value.getLongText());
            } else if (getBlock(value) != nullptr) {
                block->mSize = size;
                return &value;
            }
        }
        return nullptr;
    }

    ktVariant& destroyKey(Entry& entry) noexcept {
        if (entry.first.isLong()) {
            releaseText(entry.first.getLongText());
        }
        return entry.second;
    }
    ktVariant& destroyKey(ktVariant& value) noexcept { return value; }

    /// Trees are mostly made from the first leaf to the root, one block behind the other; so the blocks whose turn
    /// comes soon lie before this one.
    static void prefetchBefore(const ktVariantBlock* block) noexcept {
        constexpr std::uintptr_t sDistance = 1024;
        __builtin_prefetch(reinterpret_cast<const void*>(reinterpret_cast<std::uintptr_t>(block) - sDistance));
    }

    void releaseText(std::string_view text) noexcept { mReleases.add(const_cast<char*>(text.data()), text.size()); }

    ktBlockPool::Releases mReleases;
};

void ktVariantStorage::destroyTree(Kind kind, ktVariantBlock* block) noexcept { TreeDestruction().run(kind, block); }

/// Copies a tree block by block. Every block is hung into the copy before it is filled, so that whatever exists when an
/// allocation fails is destroyed with the root.
class ktVariantStorage::TreeCopy {
public:
    TreeCopy(Kind kind, const ktVariantBlock& block)
        : mKind(kind), mSource(block), mRoot(allocateBlock(kind, block.mSize)) {}
    TreeCopy(const TreeCopy&) = delete;
    TreeCopy& operator=(const TreeCopy&) = delete;
    ~TreeCopy() {
        if (mRoot != nullptr) {
            destroyTree(mKind, mRoot);
        }
    }

    ktVariantBlock* run() {
        fill(mKind, mSource, *mRoot);
        while (!mOpen.empty()) {
            const Pair pair = mOpen.back();
            mOpen.pop_back();
            fill(pair.mKind, *pair.mSource, *pair.mTarget);
        }
        return std::exchange(mRoot, nullptr);
    }

private:
    struct Pair {
        Kind mKind;
        const ktVariantBlock* mSource;
        ktVariantBlock* mTarget;
    };

    void fill(Kind kind, const ktVariantBlock& source, ktVariantBlock& target) {
        for (std::uint32_t index = 0; index < source.mSize; ++index) {
            if (kind == Kind::Map) {
                const Entry& entry = source.elements<Entry>()[index];
                auto* copy = new (target.elements<Entry>() + index) Entry{entry.first, ktVariant()};
                target.mSize = index + 1;
                copyValue(entry.second, copy->second);
            } else {
                auto* copy = new (target.elements<ktVariant>() + index) ktVariant;
                target.mSize = index + 1;
                copyValue(source.elements<ktVariant>()[index], *copy);
            }
        }
    }

    void copyValue(const ktVariant& source, ktVariant& target) {
        if (!source.isMap() && !source.isList()) {
            target = ktVariant(source);
            return;
        }
        const Kind kind = source.getKind();
        const ktVariantBlock* block = getBlock(source);
        target.setContainer(kind, nullptr);
        if (block != nullptr && block->mSize != 0) {
            ktVariantBlock* copy = allocateBlock(kind, block->mSize);
            target.setContainer(kind, copy);
            mOpen.push_back({kind, block, copy});
        }
    }

    Kind mKind;
    const ktVariantBlock& mSource;
    ktVariantBlock* mRoot;
    std::vector<Pair> mOpen;
};

ktVariantBlock* ktVariantStorage::copyTree(Kind kind, const ktVariantBlock* block) {
    if (block == nullptr || block->mSize == 0) {
        return nullptr;
    }
    return TreeCopy(kind, *block).run();
}

/// Compares two trees block by block.
class ktVariantStorage::TreeComparison {
public:
    bool run(Kind kind, const ktVariantBlock* a, const ktVariantBlock* b) {
        mOpen.push_back({kind, a, b});
        while (!mOpen.empty()) {
            const Pair pair = mOpen.back();
            mOpen.pop_back();
            if (!compareBlocks(pair)) {
                return false;
            }
        }
        return true;
    }

private:
    struct Pair {
        Kind mKind;
        const ktVariantBlock* mA;
        const ktVariantBlock* mB;
    };

    bool compareBlocks(const Pair& pair) {
        const std::size_t size = pair.mA == nullptr ? 0 : pair.mA->mSize;
        if (size != (pair.mB == nullptr ? 0 : pair.mB->mSize)) {
            return false;
        }
        for (std::size_t index = 0; index < size; ++index) {
            if (pair.mKind == Kind::Map &&
                pair.mA->elements<Entry>()[index].first != pair.mB->elements<Entry>()[index].first) {
                return false;
            }
            if (!compareValues(valueAt(pair.mKind, pair.mA, index), valueAt(pair.mKind, pair.mB, index))) {
                return false;
            }
        }
        return true;
    }

    bool compareValues(const ktVariant& a, const ktVariant& b) {
        if (!a.isMap() && !a.isList()) {
            return equalValues(a, b);
        }
        if (a.getKind() != b.getKind()) {
            return false;
        }
        mOpen.push_back({a.getKind(), getBlock(a), getBlock(b)});
        return true;
    }

    std::vector<Pair> mOpen;
};

bool ktVariantStorage::equalTrees(Kind kind, const ktVariantBlock* a, const ktVariantBlock* b) {
    return TreeComparison().run(kind, a, b);
}

bool ktVariantStorage::equalValues(const ktVariant& a, const ktVariant& b) {
    if (a.getKind() != b.getKind()) {
        return false;
    }
    switch (a.getKind()) {
        case Kind::Undefined:
            return true;
        case Kind::Boolean:
            return a.load<bool>(0) == b.load<bool>(0);
        case Kind::Integer:
            return a.load<std::int64_t>(0) == b.load<std::int64_t>(0);
        case Kind::Real:
            return a.load<double>(0) == b.load<double>(0);
        case Kind::String:
            return a.getStringView() == b.getStringView();
        case Kind::Map:
        case Kind::List:
            return equalTrees(a.getKind(), getBlock(a), getBlock(b));
    }
    return false;
}

}  // namespace kt::impl
