#include "ByteWriter.h"
#include "platform/system/ktBaseStream.h"
#include "platform/system/ktInstanceMetaData.h"
#include "platform/system/ktVariantListImpl.h"
#include "platform/system/ktVariantMapImpl.h"

#include <gtest/gtest.h>

#include <new>

namespace {

using kt::ktVariant;
using List = ktVariant::ktVariantListImpl;
using Map = ktVariant::ktVariantMapImpl;

/// Reads a map, within that budget, from the first size bytes.
Map load(const ByteWriter& bytes, bool hasError, std::size_t size, std::uint64_t budget = 1000) {
    kt::ktBaseStream stream(bytes.bytes().first(size), kt::ktStreamVersion(6, 27));
    stream.setMemoryBudget(budget);
    Map map{{"old", 1}};
    EXPECT_NO_THROW(kt::ktInstanceMetaData::LoadVariantMap(stream, map));
    EXPECT_EQ(stream.hasStreamError(), hasError) << size;
    return map;
}

TEST(VariantMapRecord, HoldsTheEntriesThatAreWhole) {
    const struct {
        const char* mKey;
        ByteWriter mBytes;
        ktVariant mValue;
    } rows[] = {
        {"undefined", ByteWriter().u8(0), ktVariant()},
        {"boolean", ByteWriter().u8(1).u8(2), true},
        {"integer", ByteWriter().u8(2).u64(static_cast<std::uint64_t>(-5)), -5},
        {"string", ByteWriter().u8(3).text("a text of twenty byt"), "a text of twenty byt"},
        {"real", ByteWriter().u8(4).f64(-0.5), -0.5},
        {"map", ByteWriter().u8(10).u32(1).text("inner").u8(3).u32(0xFFFFFFFF), Map{{"inner", ""}}},
        {"list", ByteWriter().u8(11).u32(3).u8(1).u8(0).u8(11).u32(0).u8(10).u32(0), List{false, List(), Map()}},
    };
    ByteWriter bytes = ByteWriter().u32(std::size(rows));
    Map expected;
    std::size_t size = 0;
    for (const auto& row : rows) {
        for (bytes.text(row.mKey).raw(row.mBytes.str()); size < bytes.size(); ++size) {
            ASSERT_TRUE(load(bytes, true, size) == expected) << size;
        }
        expected[row.mKey] = row.mValue;
    }
    EXPECT_TRUE(load(bytes, false, size) == expected);
}

TEST(VariantMapRecord, IsReadUpToItsFirstFault) {
    const auto b = [](std::uint8_t kind) { return ByteWriter().u32(3).text("a").u8(1).u8(1).text("b").u8(kind); };
    const struct {
        ByteWriter mBytes;
        bool mHasError;
        Map mMap;
    } rows[] = {
        {b(0).text("a").u8(2).u64(2), false, {{"a", 2}, {"b", ktVariant()}}},
        {b(5).text("c").u8(0), true, {{"a", true}}},
        {b(9).text("c").u8(0), true, {{"a", true}}},
        {b(12).text("c").u8(0), true, {{"a", true}}},
        {b(255).text("c").u8(0), true, {{"a", true}}},
        // Huge counts allocate nothing.
        {ByteWriter().u32(0xFFFFFFFF), true, {}},
        {ByteWriter().u32(1).text("k").u8(11).u32(0xFFFFFFFF), true, {}},
        {ByteWriter().u32(1).u32(0x7FFFFFFF).raw("k"), true, {}},
        {ByteWriter().u32(1).text("k").u8(3).u32(0x7FFFFFFF), true, {}},
    };
    for (const auto& row : rows) {
        EXPECT_TRUE(load(row.mBytes, row.mHasError, row.mBytes.size()) == row.mMap);
    }
}

TEST(VariantMapRecord, NestingEndsAtTheLimit) {
    ByteWriter bytes;
    for (int level = 1; level < 512; ++level) {
        bytes.u32(1).text("k").u8(10);
    }
    const ByteWriter deepest = ByteWriter(bytes).u32(0);
    EXPECT_EQ(load(deepest, false, deepest.size(), 1'000'000).size(), 1U);
    bytes.u32(1).text("k").u8(10).u32(0);
    EXPECT_TRUE(load(bytes, true, bytes.size(), 1'000'000).empty());
}

TEST(VariantMapRecord, BudgetCoversTextsAndEntries) {
    const ByteWriter bytes = ByteWriter().u32(1).text("k").u8(3).text(std::string(2000, 'x'));
    kt::ktBaseStream stream(bytes.bytes(), kt::ktStreamVersion(6, 27));
    stream.setMemoryBudget(1000);
    Map map;
    EXPECT_THROW(kt::ktInstanceMetaData::LoadVariantMap(stream, map), std::bad_alloc);
    EXPECT_FALSE(stream.hasStreamError());
}

}  // namespace
