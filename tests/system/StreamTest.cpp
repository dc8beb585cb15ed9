#include "ByteWriter.h"
#include "platform/system/ktBaseStream.h"
#include "platform/system/ktMetadataInterface.h"
#include "platform/system/ktStreamVersion.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <new>

namespace {

class Stream : public testing::Test {
protected:
    const ByteWriter mTen = ByteWriter().raw("0123456789");
    kt::ktBaseStream mStream{mTen.bytes(), kt::ktStreamVersion(6, 27)};
};

TEST(StreamNumbers, AreLittleEndian) {
    const ByteWriter bytes = ByteWriter().u32(0x01020304).number(std::uint16_t{0xABCD}).u64(0x1122334455667788);
    kt::ktBaseStream stream(bytes.bytes(), kt::ktStreamVersion());
    std::uint32_t four = 0;
    std::uint16_t two = 0;
    std::uint64_t eight = 0;
    EXPECT_TRUE(stream.readle(4, 1, &four) && stream.readle(2, 1, &two) && stream.readle(8, 1, &eight));
    EXPECT_EQ(four, 0x01020304U);
    EXPECT_EQ(two, 0xABCDU);
    EXPECT_EQ(eight, 0x1122334455667788U);
    EXPECT_EQ(stream.getConsumedCount(), 14U);
}

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

TEST_F(Stream, HugeCountsAreShortReads) {
    std::uint64_t number = 5;
    // As a stored count would be, unknown to the compiler.
    const volatile int count = std::numeric_limits<int>::max();
    EXPECT_FALSE(mStream.readle(8, count, &number));
    EXPECT_EQ(number, 5U);
}

TEST_F(Stream, BudgetRefusesBeforeItIsExceeded) {
    mStream.chargeMemory(std::numeric_limits<std::uint64_t>::max() / 16, 8);  // no budget, no bound
    kt::ktBaseStream bounded(mTen.bytes(), kt::ktStreamVersion(6, 27));
    bounded.setMemoryBudget(100);
    bounded.chargeMemory(4, 20);
    EXPECT_THROW(bounded.chargeMemory(21, 1), std::bad_alloc);
    EXPECT_TRUE(bounded.isMemoryBudgetExceeded());
    // What was refused does not count.
    EXPECT_NO_THROW(bounded.chargeMemory(20, 1));
    EXPECT_THROW(bounded.chargeMemory(std::uint64_t{1} << 33, std::uint64_t{1} << 33), std::bad_alloc);
}

TEST_F(Stream, AnnotationLevelsEndAtTheLimit) {
    for (int level = 0; level < 512; ++level) {
        ASSERT_TRUE(mStream.enterAnnotationLevel());
    }
    EXPECT_FALSE(mStream.hasStreamError());
    EXPECT_FALSE(kt::AnnotationLevel(mStream).isEntered());
    EXPECT_TRUE(mStream.hasStreamError());
    mStream.leaveAnnotationLevel();
    EXPECT_TRUE(kt::AnnotationLevel(mStream).isEntered());
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
        ByteWriter mBytes;
        std::string mName;
        bool mHasError;
    } rows[] = {
        {ByteWriter().text("front").u32(5), "front", false},
        {ByteWriter().u32(0xFFFFFFFD).u32(5), "", false},    // a negative length
        {ByteWriter().text("front").u32(6), "front", true},  // another kind of metadata
        {ByteWriter().u32(4).raw("ab"), std::string("ab\0\0", 4), true},
        {ByteWriter().raw("\1\0"), "", true},
    };
    for (const auto& row : rows) {
        kt::ktBaseStream stream(row.mBytes.bytes(), kt::ktStreamVersion(6, 27));
        const kt::ktPointer<NamedObject> object(new NamedObject(5));
        object->Load(stream);
        EXPECT_EQ(object->GetName(), row.mName);
        EXPECT_EQ(stream.hasStreamError(), row.mHasError) << row.mName;
    }
}

TEST(ObjectRecord, HugeNameIsChargedBeforeItIsAllocated) {
    const ByteWriter bytes = ByteWriter().u32(0x7FFFFFFF);
    kt::ktBaseStream stream(bytes.bytes(), kt::ktStreamVersion(6, 27));
    stream.setMemoryBudget(1 << 20);
    const kt::ktPointer<NamedObject> object(new NamedObject(5));
    EXPECT_THROW(object->Load(stream), std::bad_alloc);
    EXPECT_FALSE(stream.hasStreamError());
}

}  // namespace
