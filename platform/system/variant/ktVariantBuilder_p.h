#pragma once

/// @file
/// Building of variants from a sequence of parts.

#include "platform/system/variant/ktVariantMapImpl.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

namespace kt::impl {

/// A text of up to 15 bytes as two numbers, its first byte the least significant one, zero behind its end. What it
/// saves: benchmarks/RESULTS.md, short texts.
struct ktShortText {
    static constexpr std::size_t sMaxSize = 15;
    /// Bytes that must be readable where a short text begins.
    static constexpr std::size_t sReadableSize = 16;
    /// Elsewhere the numbers would not lie in memory as the text does.
    static constexpr bool sIsSupported = std::endian::native == std::endian::little;

    ktShortText(const char* text, std::size_t size) : mSize(size) {
        std::memcpy(&mLow, text, sizeof(mLow));
        std::memcpy(&mHigh, text + sizeof(mLow), sizeof(mHigh));
        if (size < sizeof(mLow)) {
            mLow &= (std::uint64_t{1} << (8 * size)) - 1;
            mHigh = 0;
        } else {
            mHigh &= (std::uint64_t{1} << (8 * (size - sizeof(mLow)))) - 1;
        }
    }

    bool hasBackslash() const { return (findBackslash(mLow) | findBackslash(mHigh)) != 0; }

    std::uint64_t mLow = 0;
    std::uint64_t mHigh = 0;
    std::size_t mSize;

private:
    /// Not 0 when one of the eight bytes is a backslash.
    static std::uint64_t findBackslash(std::uint64_t bytes) {
        constexpr std::uint64_t sOnes = 0x0101010101010101;
        const std::uint64_t zeroWhereFound = bytes ^ (sOnes * '\\');
        return (zeroWhereFound - sOnes) & ~zeroWhereFound & (sOnes * 0x80);
    }
};

/// Builds a variant from the parts of a document in their order. Parts wait on one stack until their map or list ends;
/// then it gets a block of just the right size. The nesting needs no call stack.
class ktVariantBuilder {
public:
    using Entry = ktVariant::ktVariantMapImpl::Entry;

    ktVariantBuilder() = default;
    ktVariantBuilder(const ktVariantBuilder&) = delete;
    ktVariantBuilder& operator=(const ktVariantBuilder&) = delete;
    ~ktVariantBuilder();

    void beginMap() { begin(ktVariant::Kind::Map); }
    void beginList() { begin(ktVariant::Kind::List); }
    /// Begins a list whose elements are taken away one by one.
    void beginOfferedList() {
        begin(ktVariant::Kind::List);
        mFrames.back().mIsOffered = true;
        mIsInOfferedList = true;
    }
    /// The key of the value that comes next, which is in a map.
    void addKey(std::string_view key) {
        new (makeRoom()) ktVariantKey(key);
        ++mCellCount;
    }
    void addKey(const ktShortText& key) { addCell(key.mLow, key.mHigh | std::uint64_t{key.mSize} << 56U); }
    void addValue(const ktShortText& text) {
        if (text.mSize > ktVariant::sMaxInlineText) [[unlikely]] {
            const std::uint64_t bytes[2] = {text.mLow, text.mHigh};
            addValue(std::string_view(reinterpret_cast<const char*>(bytes), text.mSize));
            return;
        }
        constexpr auto sTag = static_cast<std::uint64_t>(ktVariant::Kind::String) << 56U;
        addCell(text.mLow, text.mHigh | std::uint64_t{text.mSize} << 48U | sTag);
    }
    template <typename Value>
    void addValue(Value&& value) {
        new (makeRoom()) ktVariant(std::forward<Value>(value));
        ++mCellCount;
    }
    /// Ends the innermost map or list.
    void end();
    /// Drops the innermost map or list and what it holds.
    void drop();
    /// Drops a key without a value from the innermost map.
    void dropLooseKey();

    /// Maps and lists begun and not ended.
    std::size_t getDepth() const { return mFrames.size(); }
    bool isInMap() const { return mIsInMap; }
    bool isInOfferedList() const { return mIsInOfferedList; }
    /// Whether the innermost map is the outermost one, or lies in a list that is.
    bool isInRecord() const {
        return mIsInMap && (mFrames.size() == 1 || (mFrames.size() == 2 && mFrames[0].mKind == ktVariant::Kind::List));
    }
    /// The key that waits for its value.
    std::string_view getLooseKey() const {
        return reinterpret_cast<const ktVariantKey*>(mCells + mCellCount - 1)->view();
    }
    const ktVariant& getLastValue() const { return *reinterpret_cast<const ktVariant*>(mCells + mCellCount - 1); }
    void dropLastValue() { std::destroy_at(reinterpret_cast<ktVariant*>(mCells + --mCellCount)); }
    /// Drops the last value without releasing what it owns.
    void forgetLastValue() { --mCellCount; }
    /// Elements of the innermost list so far, or entries of the innermost map.
    std::size_t getElementCount() const;

    /// The one value that was built; the builder is empty then.
    ktVariant take();
    /// Drops everything.
    void clear() noexcept;

    /// Sorts raw entries by key and drops all but the last of equal keys; the number that stay.
    static std::size_t sortEntries(Entry* entries, std::size_t count);

private:
    /// Room for a key or a value.
    struct alignas(8) Cell {
        std::byte mBytes[16];
    };
    struct Frame {
        ktVariant::Kind mKind;
        bool mIsOffered;
        std::size_t mFirstCell;
    };
    /// The keys of a map in the order in which they came, and the entries' places in key order. Most maps of a document
    /// have the keys of an earlier one, and need not be sorted then (benchmarks/RESULTS.md, key orders).
    struct Shape {
        static constexpr std::size_t sMaxCount = 16;

        std::uint8_t mCount = 0;
        std::array<std::uint8_t, sMaxCount> mOrder{};  ///< arrival index of each entry of the sorted map
        std::array<Cell, sMaxCount> mKeys{};
    };

    void begin(ktVariant::Kind kind) {
        mFrames.push_back({kind, false, mCellCount});
        mIsInMap = kind == ktVariant::Kind::Map;
        mIsInOfferedList = false;
    }
    void endFrame() {
        mFrames.pop_back();
        mIsInMap = !mFrames.empty() && mFrames.back().mKind == ktVariant::Kind::Map;
        mIsInOfferedList = !mFrames.empty() && mFrames.back().mIsOffered;
    }
    Cell* makeRoom() {
        if (mCellCount == mCellCapacity) [[unlikely]] {
            grow();
        }
        return mCells + mCellCount;
    }
    void addCell(std::uint64_t low, std::uint64_t high) {
        const std::uint64_t bytes[2] = {low, high};
        std::memcpy(makeRoom()->mBytes, bytes, sizeof(bytes));
        ++mCellCount;
    }
    void grow();
    static ktVariantBlock* makeBlock(ktVariant::Kind kind, const Cell* cells, std::size_t cellCount, std::size_t count);
    ktVariantBlock* makeMapBlock(Cell* entries, std::size_t count);
    static bool matches(const Shape& shape, const Cell* entries, std::size_t count);
    static bool learn(Shape& shape, const Cell* entries, std::size_t count);
    static Shape& chooseShape(std::vector<Shape>& shapes, const Cell* entries, std::size_t count);
    void destroyCells(const Frame& frame) noexcept;

    Cell* mCells = nullptr;
    std::size_t mCellCount = 0;
    std::size_t mCellCapacity = 0;
    std::vector<Frame> mFrames;
    bool mIsInMap = false;  ///< whether the innermost frame is a map's
    bool mIsInOfferedList = false;
    std::vector<Shape> mShapes;
};

}  // namespace kt::impl
