#include "platform/system/variant/ktVariantBuilder_p.h"
#include "platform/system/variant/ktVariantStorage_p.h"

#include <algorithm>
#include <bit>
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

ktVariantBuilder::Shape& ktVariantBuilder::chooseShape(std::vector<Shape>& shapes, const Cell* entries,
                                                       std::size_t count) {
    constexpr std::size_t sShapeCount = 64;
    if (shapes.empty()) {
        shapes.resize(sShapeCount);
    }
    const auto first = std::bit_cast<std::array<std::uint64_t, 2>>(entries[0]);
    const auto last = std::bit_cast<std::array<std::uint64_t, 2>>(entries[2 * count - 2]);
    constexpr std::uint64_t sOddFactor = 0x9E3779B97F4A7C15;
    const std::uint64_t hash = (first[0] + 3 * last[0] + last[1] + count) * sOddFactor;
    return shapes[hash >> 58U];
}

bool ktVariantBuilder::matches(const Shape& shape, const Cell* entries, std::size_t count) {
    if (shape.mCount != count) {
        return false;
    }
    for (std::size_t index = 0; index < count; ++index) {
        if (std::memcmp(&shape.mKeys[index], entries + 2 * index, sizeof(Cell)) != 0) {
            return false;
        }
    }
    return true;
}

/// Makes shape that of the entries; false when these have long or repeated keys, which no shape can have.
bool ktVariantBuilder::learn(Shape& shape, const Cell* entries, std::size_t count) {
    const auto* raw = reinterpret_cast<const RawEntry*>(entries);
    shape.mCount = 0;
    for (std::size_t index = 0; index < count; ++index) {
        if (raw[index].getKey().isLong()) {
            return false;
        }
        shape.mKeys[index] = entries[2 * index];
        shape.mOrder[index] = static_cast<std::uint8_t>(index);
    }
    auto* const order = shape.mOrder.data();
    std::sort(order, order + count, [raw](std::uint8_t a, std::uint8_t b) { return raw[a] < raw[b]; });
    for (std::size_t index = 1; index < count; ++index) {
        if (!(raw[order[index - 1]] < raw[order[index]])) {
            return false;
        }
    }
    shape.mCount = static_cast<std::uint8_t>(count);
    return true;
}

ktVariantBlock* ktVariantBuilder::makeMapBlock(Cell* entries, std::size_t count) {
    auto* raw = reinterpret_cast<RawEntry*>(entries);
    if (count > 1 && count <= Shape::sMaxCount) {
        Shape& shape = chooseShape(mShapes, entries, count);
        if (matches(shape, entries, count) || learn(shape, entries, count)) [[likely]] {
            ktVariantBlock* block = ktVariantStorage::allocateBlock(ktVariant::Kind::Map, count);
            auto* target = block->elements<RawEntry>();
            for (std::size_t index = 0; index < count; ++index) {
                target[index] = raw[shape.mOrder[index]];
            }
            block->mSize = static_cast<std::uint32_t>(count);
            return block;
        }
    }
    if (count != 1) {
        count = sortEntries(reinterpret_cast<Entry*>(entries), count);
        mCellCount = mFrames.back().mFirstCell + 2 * count;
    }
    return makeBlock(ktVariant::Kind::Map, entries, 2 * count, count);
}

/// A block that holds the cells of count elements.
ktVariantBlock* ktVariantBuilder::makeBlock(ktVariant::Kind kind, const Cell* cells, std::size_t cellCount,
                                            std::size_t count) {
    ktVariantBlock* block = ktVariantStorage::allocateBlock(kind, count);
    auto* target = block->elements<Cell>();
    // Most blocks are so small that a call would take longer than their copy.
    constexpr std::size_t sFewCells = 3;
    if (cellCount > sFewCells) {
        std::memcpy(target, cells, cellCount * sizeof(Cell));
    } else {
        target[0] = cells[0];
        target[cellCount / 2] = cells[cellCount / 2];
        target[cellCount - 1] = cells[cellCount - 1];
    }
    block->mSize = static_cast<std::uint32_t>(count);
    return block;
}

void ktVariantBuilder::end() {
    const Frame& frame = mFrames.back();
    const ktVariant::Kind kind = frame.mKind;
    const std::size_t firstCell = frame.mFirstCell;
    const std::size_t cellCount = mCellCount - firstCell;
    Cell* first = mCells + firstCell;
    ktVariantBlock* block = nullptr;
    if (cellCount != 0) {
        block = kind == ktVariant::Kind::Map ? makeMapBlock(first, cellCount / 2)
                                             : makeBlock(kind, first, cellCount, cellCount);
    }
    mCellCount = firstCell;
    endFrame();
    // The room of the elements holds their container, unless there were none.
    auto* container = new (makeRoom()) ktVariant;
    container->setContainer(kind, block);
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
    endFrame();
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
    destroyCells({ktVariant::Kind::List, false, 0});
}

}  // namespace kt::impl
