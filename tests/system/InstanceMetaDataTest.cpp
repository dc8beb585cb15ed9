#include "platform/system/object/ktInstanceMetaData.h"
#include "platform/system/stream/ktBaseStream.h"
#include "platform/system/variant/ktVariantListImpl.h"
#include "platform/system/variant/ktVariantMapImpl.h"
#include "tests/legacy/StreamBuilder.h"

#include <gtest/gtest.h>

#include <new>

namespace {

using kt::ktVariant;
using ktTest::StreamBuilder;
using List = ktVariant::ktVariantListImpl;
using Map = ktVariant::ktVariantMapImpl;

/// Reads a map, within that budget, from the first size bytes.
Map load(const StreamBuilder& bytes, bool hasError, std::size_t size, std::uint64_t budget = 1000) {
    kt::ktBaseStream stream(std::span<const std::byte>(bytes).first(size), kt::ktStreamVersion(6, 27));
    stream.setMemoryBudget(budget);
    Map map{{"old", 1}};
    EXPECT_NO_THROW(kt::ktInstanceMetaData::LoadVariantMap(stream, map));
    EXPECT_EQ(stream.hasStreamError(), hasError) << size;
    return map;
}

TEST(VariantMapRecord, HoldsTheEntriesThatAreWhole) {
    const struct {
        const char* mKey;
        StreamBuilder mBytes;
        ktVariant mValue;
    } rows[] = {
        {"undefined", StreamBuilder().u8(0), ktVariant()},
        {"boolean", StreamBuilder().u8(1).u8(2), true},
        {"integer", StreamBuilder().u8(2).u64(static_cast<std::uint64_t>(-5)), -5},
        {"string", StreamBuilder().u8(3).text("a text of twenty byt"), "a text of twenty byt"},
        {"real", StreamBuilder().u8(4).f64(-0.5), -0.5},
        {"map", StreamBuilder().u8(10).u32(1).text("inner").u8(3).u32(0xFFFFFFFF), Map{{"inner", ""}}},
        {"list", StreamBuilder().u8(11).u32(3).u8(1).u8(0).u8(11).u32(0).u8(10).u32(0), List{false, List(), Map()}},
    };
    StreamBuilder bytes = StreamBuilder().u32(std::size(rows));
    Map expected;
    std::size_t size = 0;
    for (const auto& row : rows) {
        for (bytes.text(row.mKey).bytes(row.mBytes); size < bytes.getSize(); ++size) {
            ASSERT_TRUE(load(bytes, true, size) == expected) << size;
        }
        expected[row.mKey] = row.mValue;
    }
    EXPECT_TRUE(load(bytes, false, size) == expected);
}

TEST(VariantMapRecord, IsReadUpToItsFirstFault) {
    const auto b = [](std::uint8_t kind) { return StreamBuilder().u32(3).text("a").u8(1).u8(1).text("b").u8(kind); };
    const struct {
        StreamBuilder mBytes;
        bool mHasError;
        Map mMap;
    } rows[] = {
        {b(0).text("a").u8(2).u64(2), false, {{"a", 2}, {"b", ktVariant()}}},
        {b(5).text("c").u8(0), true, {{"a", true}}},
        {b(9).text("c").u8(0), true, {{"a", true}}},
        {b(12).text("c").u8(0), true, {{"a", true}}},
        {b(255).text("c").u8(0), true, {{"a", true}}},
        // Huge counts allocate nothing.
        {StreamBuilder().u32(0xFFFFFFFF), true, {}},
        {StreamBuilder().u32(1).text("k").u8(11).u32(0xFFFFFFFF), true, {}},
        {StreamBuilder().u32(1).u32(0x7FFFFFFF).bytes("k"), true, {}},
        {StreamBuilder().u32(1).text("k").u8(3).u32(0x7FFFFFFF), true, {}},
    };
    for (const auto& row : rows) {
        EXPECT_TRUE(load(row.mBytes, row.mHasError, row.mBytes.getSize()) == row.mMap);
    }
}

TEST(VariantMapRecord, NestingEndsAtTheLimit) {
    StreamBuilder bytes;
    for (int level = 1; level < 512; ++level) {
        bytes.u32(1).text("k").u8(10);
    }
    const StreamBuilder deepest = StreamBuilder(bytes).u32(0);
    EXPECT_EQ(load(deepest, false, deepest.getSize(), 1'000'000).size(), 1U);
    bytes.u32(1).text("k").u8(10).u32(0);
    EXPECT_TRUE(load(bytes, true, bytes.getSize(), 1'000'000).empty());
}

}  // namespace
