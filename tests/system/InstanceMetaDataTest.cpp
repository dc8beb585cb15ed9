#include "ByteWriter.h"
#include "platform/system/ktBaseStream.h"
#include "platform/system/ktInstanceMetaData.h"
#include "platform/system/ktVariantListImpl.h"
#include "platform/system/ktVariantMapImpl.h"

#include <gtest/gtest.h>

#include <new>

namespace {

using kt::ktVariant;
using Map = ktVariant::ktVariantMapImpl;

/// What reading gives: the map, and whether the error flag was set.
struct Loaded {
    Map mMap{{"old", 1}};
    bool mHasError = false;
};

Loaded load(const ByteWriter& bytes, std::size_t size = static_cast<std::size_t>(-1)) {
    kt::ktBaseStream stream(bytes.bytes().first(std::min(size, bytes.size())), kt::ktStreamVersion(6, 27));
    Loaded loaded;
    kt::ktInstanceMetaData::LoadVariantMap(stream, loaded.mMap);
    loaded.mHasError = stream.hasStreamError();
    return loaded;
}

ByteWriter makeAllKinds() {
    ByteWriter bytes;
    bytes.u32(7);
    bytes.text("undefined").u8(0);
    bytes.text("boolean").u8(1).u8(2);
    bytes.text("integer").u8(2).u64(static_cast<std::uint64_t>(-5));
    bytes.text("string").u8(3).text("a text of twenty byt");
    bytes.text("real").u8(4).f64(-0.5);
    bytes.text("map").u8(10).u32(1).text("inner").u8(3).u32(0xFFFFFFFF);
    bytes.text("list").u8(11).u32(3).u8(1).u8(0).u8(11).u32(0).u8(10).u32(0);
    return bytes;
}

TEST(VariantMapRecord, HoldsEveryKind) {
    const Loaded loaded = load(makeAllKinds());
    EXPECT_FALSE(loaded.mHasError);
    const Map expected{
        {"undefined", ktVariant()},
        {"boolean", true},
        {"integer", -5},
        {"string", "a text of twenty byt"},
        {"real", -0.5},
        {"map", Map{{"inner", ""}}},
        {"list", ktVariant::ktVariantListImpl{false, ktVariant::ktVariantListImpl(), Map()}},
    };
    EXPECT_TRUE(loaded.mMap == expected);
}

TEST(VariantMapRecord, CutAnywhereKeepsWholeEntriesOnly) {
    const ByteWriter bytes = makeAllKinds();
    const Loaded whole = load(bytes);
    const char* const order[] = {"undefined", "boolean", "integer", "string", "real", "map", "list"};
    std::size_t lastCount = 0;
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        const Loaded loaded = load(bytes, size);
        ASSERT_TRUE(loaded.mHasError) << size;
        ASSERT_GE(loaded.mMap.size(), lastCount) << size;
        lastCount = loaded.mMap.size();
        for (std::size_t index = 0; index < std::size(order); ++index) {
            const auto found = loaded.mMap.find(order[index]);
            ASSERT_EQ(found != loaded.mMap.end(), index < lastCount) << size;
            ASSERT_TRUE(index >= lastCount || found->second == whole.mMap.at(order[index])) << size;
        }
    }
    EXPECT_EQ(lastCount, 6U);
}

TEST(VariantMapRecord, LastOfRepeatedKeysCounts) {
    const Loaded loaded = load(ByteWriter().u32(3).text("a").u8(1).u8(1).text("b").u8(0).text("a").u8(2).u64(2));
    EXPECT_FALSE(loaded.mHasError);
    EXPECT_TRUE(loaded.mMap == (Map{{"a", 2}, {"b", ktVariant()}}));
}

TEST(VariantMapRecord, UnknownKindEndsTheReading) {
    for (const int number : {5, 9, 12, 255}) {
        const auto kind = static_cast<std::uint8_t>(number);
        const Loaded loaded = load(ByteWriter().u32(3).text("a").u8(1).u8(1).text("b").u8(kind).text("c").u8(0));
        EXPECT_TRUE(loaded.mHasError);
        EXPECT_TRUE(loaded.mMap == (Map{{"a", true}}));
    }
}

TEST(VariantMapRecord, NestingEndsAtTheLimit) {
    const auto makeNested = [](int levels) {
        ByteWriter bytes;
        for (int level = 1; level < levels; ++level) {
            bytes.u32(1).text("k").u8(10);
        }
        return bytes.u32(0);
    };
    EXPECT_FALSE(load(makeNested(512)).mHasError);
    const Loaded tooDeep = load(makeNested(513));
    EXPECT_TRUE(tooDeep.mHasError);
    EXPECT_TRUE(tooDeep.mMap.empty());
}

TEST(VariantMapRecord, HugeCountsAllocateNothing) {
    const ByteWriter cases[] = {
        ByteWriter().u32(0xFFFFFFFF),
        ByteWriter().u32(1).text("k").u8(11).u32(0xFFFFFFFF),
        ByteWriter().u32(1).u32(0x7FFFFFFF).raw("k"),
        ByteWriter().u32(1).text("k").u8(3).u32(0x7FFFFFFF),
    };
    for (const ByteWriter& bytes : cases) {
        kt::ktBaseStream stream(bytes.bytes(), kt::ktStreamVersion(6, 27));
        stream.setMemoryBudget(1000);
        Map map{{"old", 1}};
        EXPECT_NO_THROW(kt::ktInstanceMetaData::LoadVariantMap(stream, map));
        EXPECT_TRUE(stream.hasStreamError());
        EXPECT_TRUE(map.empty());
    }
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
