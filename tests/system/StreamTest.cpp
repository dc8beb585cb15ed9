#include "platform/system/object/ktMetadataInterface.h"
#include "platform/system/stream/ktBaseStream.h"
#include "platform/system/stream/ktStreamVersion.h"
#include "tests/legacy/StreamBuilder.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <new>

namespace {

using ktTest::StreamBuilder;
class Stream : public testing::Test {
protected:
    const StreamBuilder mTen = StreamBuilder().bytes("0123456789");
    kt::ktBaseStream mStream{mTen.getBytes(), kt::ktStreamVersion(6, 27)};
};

TEST_F(Stream, ShortReadleStoresNothingAndExhausts) {
    std::array<std::uint32_t, 3> numbers{7, 8, 9};
    std::uint32_t skipped = 0;
    EXPECT_TRUE(mStream.readle(4, 0, nullptr) && mStream.readle(4, -1, nullptr));
    EXPECT_EQ(mStream.getOffset(), 0U);
    ASSERT_TRUE(mStream.readle(4, 1, &skipped));
    EXPECT_FALSE(mStream.readle(4, 3, numbers.data()));
    EXPECT_EQ(numbers, (std::array<std::uint32_t, 3>{7, 8, 9}));
    EXPECT_TRUE(mStream.hasStreamError());
    EXPECT_EQ(mStream.getErrorOffset(), 4U);
    EXPECT_EQ(mStream.getConsumedCount(), 4U);
    // Six bytes are left, but after a short read every read is short.
    char byte = 'x';
    EXPECT_EQ(mStream.read(&byte, 1), 0U);
    EXPECT_EQ(byte, 'x');
}

TEST_F(Stream, ShortRawReadStoresWhatThereIsAndSetsNoFlag) {
    std::string text(12, '\0');
    EXPECT_EQ(mStream.read(text.data(), text.size()), 10U);
    EXPECT_EQ(text, std::string("0123456789\0\0", 12));
    EXPECT_FALSE(mStream.hasStreamError());
    EXPECT_EQ(mStream.getConsumedCount(), 0U);
    std::uint8_t byte = 42;
    EXPECT_FALSE(mStream.readByte(byte));
    EXPECT_EQ(byte, 42);
    EXPECT_TRUE(mStream.hasStreamError());
    // Confined reading is fresh and ends at its bound.
    mStream.confine(2, 5);
    EXPECT_FALSE(mStream.hasStreamError());
    EXPECT_EQ(mStream.read(text.data(), 4), 3U);
    EXPECT_EQ(text.substr(0, 4), "2343");
    EXPECT_EQ(mStream.getOffset(), 5U);
}

TEST_F(Stream, BudgetRefusesBeforeItIsExceeded) {
    mStream.chargeMemory(std::numeric_limits<std::uint64_t>::max() / 16, 8);  // no budget, no bound
    kt::ktBaseStream bounded(mTen.getBytes(), kt::ktStreamVersion(6, 27));
    bounded.setMemoryBudget(100);
    bounded.chargeMemory(4, 20);
    EXPECT_THROW(bounded.chargeMemory(21, 1), std::bad_alloc);
    EXPECT_TRUE(bounded.isMemoryBudgetExceeded());
    // What was refused does not count.
    EXPECT_NO_THROW(bounded.chargeMemory(20, 1));
    EXPECT_THROW(bounded.chargeMemory(std::uint64_t{1} << 33, std::uint64_t{1} << 33), std::bad_alloc);
}

TEST(StreamVersion, ParsesTwoNumbersAndNothingElse) {
    const std::pair<const char*, std::uint32_t> accepted[] = {
        {"6.15", 0x6000F}, {"0.0", 0}, {"65535.65535", 0xFFFFFFFF}, {"00006.00001", 0x60001}};
    for (const auto& [text, packed] : accepted) {
        EXPECT_EQ(kt::ktStreamVersion(text).toInteger(), packed) << text;
    }
    for (const char* text :
         {"65536.1", "000006.1", "6", "6.", ".1", "6.1.2", "6,1", " 6.1", "+6.1", "6.-1", "", "6.1 "}) {
        EXPECT_EQ(kt::ktStreamVersion(text).toInteger(), 0U) << text;
    }
    EXPECT_EQ(kt::ktStreamVersion(6, 27).toString(), "6.27");
    EXPECT_LT(kt::ktStreamVersion(6, 9), kt::ktStreamVersion(6, 15));
}

class NamedObject : public kt::ktMetadataInterface {
public:
    explicit NamedObject(std::uint32_t typeId) : ktMetadataInterface(typeId) {}
    void SetName(const std::string& name) override { mName = name; }
    const std::string& GetName() const override { return mName; }

private:
    std::string mName = "before";
};

TEST(ObjectRecord, NameGoesThroughSetName) {
    const struct {
        StreamBuilder mBytes;
        std::string mName;
        bool mHasError;
    } rows[] = {
        {StreamBuilder().text("front").u32(5), "front", false},
        {StreamBuilder().u32(0xFFFFFFFD).u32(5), "", false},    // a negative length
        {StreamBuilder().text("front").u32(6), "front", true},  // another kind of metadata
        {StreamBuilder().u32(4).bytes("ab"), std::string("ab\0\0", 4), true},
        {StreamBuilder().bytes("\1\0"), "", true},
    };
    for (const auto& row : rows) {
        kt::ktBaseStream stream(row.mBytes.getBytes(), kt::ktStreamVersion(6, 27));
        const kt::ktPointer<NamedObject> object(new NamedObject(5));
        object->Load(stream);
        EXPECT_EQ(object->GetName(), row.mName);
        EXPECT_EQ(stream.hasStreamError(), row.mHasError) << row.mName;
    }
}

}  // namespace
