#include "ByteWriter.h"
#include "platform/system/ktBaseStream.h"
#include "platform/system/ktMetadataInterface.h"
#include "platform/system/ktStreamVersion.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <new>

namespace {

const ByteWriter sTen = ByteWriter().raw("0123456789");

kt::ktBaseStream makeStream() { return {sTen.bytes(), kt::ktStreamVersion(6, 27)}; }

TEST(Stream, ReadsLittleEndianItems) {
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

TEST(Stream, ShortReadleStoresNothingAndExhausts) {
    kt::ktBaseStream stream = makeStream();
    std::array<std::uint32_t, 3> numbers{7, 8, 9};
    std::uint32_t skipped = 0;
    ASSERT_TRUE(stream.readle(4, 1, &skipped));
    EXPECT_FALSE(stream.readle(4, 3, numbers.data()));
    EXPECT_EQ(numbers, (std::array<std::uint32_t, 3>{7, 8, 9}));
    EXPECT_TRUE(stream.hasStreamError());
    EXPECT_EQ(stream.getErrorOffset(), 4U);
    EXPECT_EQ(stream.getConsumedCount(), 4U);
    // Six bytes are left, but after a short read every read is short.
    char byte = 'x';
    EXPECT_EQ(stream.read(&byte, 1), 0U);
    EXPECT_EQ(byte, 'x');
}

TEST(Stream, ShortRawReadStoresWhatThereIsAndSetsNoFlag) {
    kt::ktBaseStream stream = makeStream();
    std::string text(12, '\0');
    EXPECT_EQ(stream.read(text.data(), text.size()), 10U);
    EXPECT_EQ(text, std::string("0123456789\0\0", 12));
    EXPECT_FALSE(stream.hasStreamError());
    EXPECT_EQ(stream.getConsumedCount(), 0U);
    std::uint8_t byte = 42;
    EXPECT_FALSE(stream.readByte(byte));
    EXPECT_EQ(byte, 42);
    EXPECT_TRUE(stream.hasStreamError());
}

TEST(Stream, HugeCountsAreShortReads) {
    kt::ktBaseStream stream = makeStream();
    std::uint64_t number = 5;
    // As a stored count would be, unknown to the compiler.
    const volatile int count = std::numeric_limits<int>::max();
    EXPECT_FALSE(stream.readle(8, count, &number));
    EXPECT_EQ(number, 5U);
}

TEST(Stream, CountsBelowOneReadNothing) {
    kt::ktBaseStream stream = makeStream();
    EXPECT_TRUE(stream.readle(4, 0, nullptr));
    EXPECT_TRUE(stream.readle(4, -1, nullptr));
    EXPECT_EQ(stream.getOffset(), 0U);
}

TEST(Stream, ConfinedReadingIsFreshAndEndsAtItsBound) {
    kt::ktBaseStream stream = makeStream();
    std::string all(11, ' ');
    stream.read(all.data(), all.size());
    stream.setStreamError();
    stream.confine(2, 5);
    EXPECT_FALSE(stream.hasStreamError());
    std::string part(4, '.');
    EXPECT_EQ(stream.read(part.data(), part.size()), 3U);
    EXPECT_EQ(part, "234.");
    EXPECT_EQ(stream.getOffset(), 5U);
}

TEST(Stream, BudgetRefusesBeforeItIsExceeded) {
    kt::ktBaseStream stream = makeStream();
    stream.chargeMemory(std::numeric_limits<std::uint64_t>::max() / 16, 8);  // no budget, no bound
    kt::ktBaseStream bounded = makeStream();
    bounded.setMemoryBudget(100);
    bounded.chargeMemory(4, 20);
    EXPECT_THROW(bounded.chargeMemory(21, 1), std::bad_alloc);
    EXPECT_TRUE(bounded.isMemoryBudgetExceeded());
    // What was refused does not count.
    EXPECT_NO_THROW(bounded.chargeMemory(20, 1));
    EXPECT_THROW(bounded.chargeMemory(std::uint64_t{1} << 33, std::uint64_t{1} << 33), std::bad_alloc);
}

TEST(Stream, AnnotationLevelsEndAtTheLimit) {
    kt::ktBaseStream stream = makeStream();
    for (int level = 0; level < 512; ++level) {
        ASSERT_TRUE(stream.enterAnnotationLevel());
    }
    EXPECT_FALSE(stream.hasStreamError());
    EXPECT_FALSE(kt::AnnotationLevel(stream).isEntered());
    EXPECT_TRUE(stream.hasStreamError());
    stream.leaveAnnotationLevel();
    EXPECT_TRUE(kt::AnnotationLevel(stream).isEntered());
}

struct VersionCase {
    const char* mText;
    std::uint32_t mPacked;
};

TEST(StreamVersion, ParsesTwoNumbersAndNothingElse) {
    const VersionCase cases[] = {
        {"6.15", 0x6000F},
        {"0.0", 0},
        {"65535.65535", 0xFFFFFFFF},
        {"00006.00001", 0x60001},
        {"65536.0", 0},
        {"000006.1", 0},
        {"6", 0},
        {"6.", 0},
        {".1", 0},
        {"6.1.2", 0},
        {"6,1", 0},
        {" 6.1", 0},
        {"+6.1", 0},
        {"6.-1", 0},
        {"", 0},
        {"6.1 ", 0},
    };
    for (const auto& [text, packed] : cases) {
        EXPECT_EQ(kt::ktStreamVersion(text).toInteger(), packed) << text;
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
    struct Case {
        ByteWriter mBytes;
        std::string mName;
        bool mHasError;
    };
    const Case cases[] = {
        {ByteWriter().text("front").u32(5), "front", false},
        {ByteWriter().u32(0xFFFFFFFD).u32(5), "", false},    // a negative length
        {ByteWriter().text("front").u32(6), "front", true},  // another kind of metadata
        {ByteWriter().u32(4).raw("ab"), std::string("ab\0\0", 4), true},
        {ByteWriter().raw("\1\0"), "", true},
    };
    for (const Case& record : cases) {
        kt::ktBaseStream stream(record.mBytes.bytes(), kt::ktStreamVersion(6, 27));
        const kt::ktPointer<NamedObject> object(new NamedObject(5));
        object->Load(stream);
        EXPECT_EQ(object->GetName(), record.mName);
        EXPECT_EQ(stream.hasStreamError(), record.mHasError) << record.mName;
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
