#include "platform/system/ktVariantBuilder_p.h"
#include "platform/system/ktVariantStorage_p.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

namespace kt::impl {

namespace {

using Entry = ktVariantBuilder::Entry;

/// The bytes of an entry, to be moved about while entries are sorted.
struct alignas(8) RawEntry {
    std::byte mBytes[sizeof(Entry)];

    const ktVariantKey& getKey() const { return *reinterpret_cast<const ktVariantKey*>(mBytes); }
    bool operator<(const RawEntry& other) const { return getKey() < other.getKey(); }
};

bool isStrictlyAscending(const RawEntry* entries, std::size_t count) {
    for (std::size_t index = 1; index < count; ++index) {
        if (!(entries[index - 1] < entries[index])) {
            return false;
        }
    }
    return true;
}

void insertionSort(RawEntry* entries, std::size_t count) {
    for (std::size_t index = 1; index < count; ++index) {
        const RawEntry moved = entries[index];
        std::size_t place = index;
        for (; place > 0 && moved < entries[place - 1]; --place) {
            entries[place] = entries[place - 1];
        }
        entries[place] = moved;
    }
}

/// Drops all but the last of neighbours with equal keys.
std::size_t dropRepeatedKeys(RawEntry* entries, std::size_t count) {
    std::size_t kept = 0;
    for (std::size_t index = 0; index < count; ++index) {
        if (index + 1 < count && entries[index].getKey() == entries[index + 1].getKey()) {
            std::destroy_at(reinterpret_cast<Entry*>(entries + index));
        } else {
            entries[kept++] = entries[index];
        }
    }
    return kept;
}

}  // namespace

std::size_t ktVariantBuilder::sortEntries(Entry* entries, std::size_t count) {
    constexpr std::size_t sFewEntries = 24;
    auto* raw = reinterpret_cast<RawEntry*>(entries);
    if (isStrictlyAscending(raw, count)) {
        return count;
    }
    if (count <= sFewEntries) {
        insertionSort(raw, count);
    } else {
        std::stable_sort(raw, raw + count);
    }
    return dropRepeatedKeys(raw, count);
}

ktVariantBuilder::~ktVariantBuilder() {
    clear();
    std::free(mCells);
}

void ktVariantBuilder::grow() {
    constexpr std::size_t sFirstCapacity = 256;
    const std::size_t capacity = std::max(mCellCapacity * 2, sFirstCapacity);
    void* cells = std::realloc(static_cast<void*>(mCells), capacity * sizeof(Cell));
    if (cells == nullptr) {
        throw std::bad_alloc();
    }
    mCells = static_cast<Cell*>(cells);
    mCellCapacity = capacity;
}

std::size_t ktVariantBuilder::getElementCount() const {
    const std::size_t cells = mCellCount - mFrames.back().mFirstCell;
    return isInMap() ? cells / 2 : cells;
}

void ktVariantBuilder::end() {
    const Frame frame = mFrames.back();
    Cell* first = mCells + frame.mFirstCell;
    std::size_t count = getElementCount();
    ktVariantBlock* block = nullptr;
    if (count != 0) {
        if (frame.mKind == ktVariant::Kind::Map) {
            count = sortEntries(reinterpret_cast<Entry*>(first), count);
            mCellCount = frame.mFirstCell + 2 * count;
        }
        block = ktVariantStorage::allocateBlock(frame.mKind, count);
        std::memcpy(static_cast<void*>(block + 1), first, (mCellCount - frame.mFirstCell) * sizeof(Cell));
        block->mSize = static_cast<std::uint32_t>(count);
    }
    mCellCount = frame.mFirstCell;
    mFrames.pop_back();
    // The room of the elements holds their container, unless there were none.
    auto* container = new (makeRoom()) ktVariant;
    container->setContainer(frame.mKind, block);
    ++mCellCount;
}

void ktVariantBuilder::destroyCells(const Frame& frame) noexcept {
    for (std::size_t cell = frame.mFirstCell; cell < mCellCount; ++cell) {
        if (frame.mKind == ktVariant::Kind::Map && (cell - frame.mFirstCell) % 2 == 0) {
            std::destroy_at(reinterpret_cast<ktVariantKey*>(mCells + cell));
        } else {
            std::destroy_at(reinterpret_cast<ktVariant*>(mCells + cell));
        }
    }
    mCellCount = frame.mFirstCell;
}

void ktVariantBuilder::drop() {
    destroyCells(mFrames.back());
    mFrames.pop_back();
}

void ktVariantBuilder::dropLooseKey() {
    if (isInMap() && (mCellCount - mFrames.back().mFirstCell) % 2 != 0) {
        --mCellCount;
        std::destroy_at(reinterpret_cast<ktVariantKey*>(mCells + mCellCount));
    }
}

ktVariant ktVariantBuilder::take() {
    --mCellCount;
    auto* value = reinterpret_cast<ktVariant*>(mCells + mCellCount);
    ktVariant taken(std::move(*value));
    std::destroy_at(value);
    return taken;
}

void ktVariantBuilder::clear() noexcept {
    while (!mFrames.empty()) {
        drop();
    }
    destroyCells({ktVariant::Kind::List, 0});
}

}  // namespace kt::impl
