#include "ByteWriter.h"
#include "platform/system/ktBaseStream.h"
#include "platform/system/ktLimits.h"
#include "platform/system/ktObject.h"
#include "platform/system/ktObjectDocument.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;

template <typename Object>
kt::ktRttiInterface* make(kt::ktBaseStream& stream) {
    auto object = std::make_unique<Object>();
    object->Load(stream);
    return object.release();
}

/// An object of a name.
class Leaf : public kt::ktObject {
public:
    void SetName(const std::string& name) override { mName = name; }
    const std::string& GetName() const override { return mName; }

private:
    std::string mName;
};

/// An object of links to leaves.
class Branch : public kt::ktObject {
public:
    void Load(kt::ktBaseStream& stream) override {
        std::uint32_t count = 0;
        stream.readle(4, 1, &count);
        stream.chargeMemory(count, sizeof(mLeaves[0]));
        mLeaves.resize(count);
        stream.ReadObjectImpl(mLeaves.data(), static_cast<int>(count), kt::ktBaseStream::GetLinkPointer<Leaf>);
    }
    void PostLink(kt::ktBaseStream& /*stream*/) override {
        for (const auto& leaf : mLeaves) {
            mNames.push_back(leaf ? leaf->GetName() : "null");
        }
    }

    std::vector<kt::ktPointer<Leaf>> mLeaves;
    std::vector<std::string> mNames;  ///< as seen after linking
};

kt::ktRttiInterface* failToAllocate(kt::ktBaseStream& /*stream*/) { throw std::bad_alloc(); }

class ObjectDocument : public testing::Test {
protected:
    void SetUp() override {
        kt::ktRttiInterface::RegisterFactoryFunction("Leaf", make<Leaf>);
        kt::ktRttiInterface::RegisterFactoryFunction("Branch", make<Branch>);
        kt::ktRttiInterface::RegisterFactoryFunction("Failing", failToAllocate);
    }
    void TearDown() override {
        for (const char* name : {"Leaf", "Branch", "Failing"}) {
            kt::ktRttiInterface::UnregisterFactoryFunction(name);
        }
    }
};

ByteWriter makeHeader(std::uint32_t count) { return ByteWriter().raw("KTSTREAM").u32(0x6001B).u32(count); }

ByteWriter makeRecord(std::string_view type, std::uint32_t id, const ByteWriter& body) {
    return ByteWriter().text(type).u32(id).u64(body.size()).raw(body.str());
}

ByteWriter makeLeaf(std::uint32_t id, std::string_view name) { return makeRecord("Leaf", id, ByteWriter().text(name)); }

ByteWriter makeBranch(std::uint32_t id, const std::vector<std::uint32_t>& links) {
    ByteWriter body;
    body.u32(static_cast<std::uint32_t>(links.size()));
    for (const std::uint32_t link : links) {
        body.u32(link);
    }
    return makeRecord("Branch", id, body);
}

ByteWriter makeDocument(const std::vector<ByteWriter>& records) {
    ByteWriter bytes = makeHeader(static_cast<std::uint32_t>(records.size()));
    for (const ByteWriter& record : records) {
        bytes.raw(record.str());
    }
    return bytes;
}

std::vector<std::string> linkedNames(const kt::ktObjectDocument& document, std::size_t index) {
    return dynamic_cast<const Branch&>(*document.getObjects().at(index).mObject).mNames;
}

auto isProblem(std::uint32_t objectId, std::uint64_t offset, const std::string& text) {
    using Problem = kt::ktObjectDocument::Problem;
    return AllOf(Field("object", &Problem::mObjectId, objectId), Field("offset", &Problem::mOffset, offset),
                 Field("text", &Problem::mWhat, HasSubstr(text)));
}

TEST_F(ObjectDocument, LinksLeadForwardsAndBackwards) {
    const kt::ktObjectDocument document(
        makeDocument({makeLeaf(9, "a"), makeBranch(1, {7, 0, 9, 7}), makeLeaf(7, "b")}).bytes());
    EXPECT_FALSE(document.isRefused());
    EXPECT_EQ(document.getVersion(), kt::ktStreamVersion(6, 27));
    EXPECT_THAT(document.getProblems(), IsEmpty());
    ASSERT_EQ(document.getObjects().size(), 3U);
    EXPECT_EQ(document.getObjects()[1].mOffset, 16U + makeLeaf(9, "a").size());
    EXPECT_THAT(linkedNames(document, 1), ElementsAre("b", "null", "a", "b"));
    // The first holder of an id counts.
    const kt::ktObjectDocument taken(
        makeDocument({makeBranch(1, {2}), makeLeaf(2, "first"), makeLeaf(2, "second")}).bytes());
    EXPECT_THAT(linkedNames(taken, 0), ElementsAre("first"));
}

TEST_F(ObjectDocument, RefusesWhatHasNoHeader) {
    const std::pair<ByteWriter, const char*> cases[] = {
        {ByteWriter(), "empty"},
        {ByteWriter().raw("MAERTSTK").u32(1).u32(0), "KTSTREAM"},
        {ByteWriter().raw("KTSTREAM"), "header"},
        {ByteWriter().raw("KTSTREAM").u32(0x6001B).raw("abc"), "15 bytes"},
    };
    for (const auto& [bytes, reason] : cases) {
        EXPECT_THAT(kt::ktObjectDocument(bytes.bytes()).getRefusal(), HasSubstr(reason));
    }
    EXPECT_FALSE(kt::ktObjectDocument(makeHeader(0).bytes()).isRefused());
}

TEST_F(ObjectDocument, ReportsOneProblemAndReadsOn) {
    const ByteWriter good = makeLeaf(5, "good");
    const std::uint64_t second = 16 + good.size();
    const auto leafOf = [](const ByteWriter& body) { return makeRecord("Leaf", 3, body); };
    const struct {
        ByteWriter mBytes;
        std::uint32_t mObjectId;
        std::uint64_t mOffset;
        const char* mText;
        std::size_t mObjects;  ///< that are kept
        bool mHasStreamError = false;
    } rows[] = {
        {makeDocument({makeRecord("Twig", 3, ByteWriter().raw("??")), good}), 3, 16, "unknown type name 'Twig'", 1},
        {makeDocument({makeLeaf(0, "x"), good}), 0, 16, "id 0", 2},
        {makeDocument({good, makeLeaf(5, "x")}), 5, second, "taken", 2},
        {makeDocument({leafOf(ByteWriter().text("x").raw("???")), good}), 3, 16 + 20 + 5, "3 bytes left over", 2},
        {makeDocument({leafOf(ByteWriter().u32(9).raw("x")), good}), 3, 16 + 20 + 4, "damaged", 2, true},
        {makeDocument({good}).raw("!"), 0, second, "1 byte after the last record", 1},
        {makeHeader(0xFFFFFFFF).raw(good.str()), 0, second, "record 2 of 4294967295", 1},
        {makeDocument({good, ByteWriter().text("Leaf").u32(7)}), 0, second, "inside the head", 1},
        {makeDocument({good, ByteWriter().u32(0xFFFFFFFF).u64(0).u64(0)}), 0, second, "claims -1 bytes", 1},
        {makeDocument({good, ByteWriter().u32(0x7FFFFFFF).u64(0)}), 0, second, "claims 2147483647 bytes", 1},
        {makeDocument({makeBranch(3, {4, 5}), good}), 3, 16 + 22 + 4, "object 4 leads nowhere", 2},
        {makeDocument({makeBranch(3, {3, 5}), good}), 3, 16 + 22 + 4, "not the type wanted", 2},
        {makeDocument({makeRecord("Failing", 3, {}), good}), 3, 16 + 23, "not enough memory", 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.mText);
        const kt::ktObjectDocument document(row.mBytes.bytes());
        EXPECT_FALSE(document.isRefused());
        EXPECT_THAT(document.getProblems(), ElementsAre(isProblem(row.mObjectId, row.mOffset, row.mText)));
        EXPECT_EQ(document.getObjects().size(), row.mObjects);
        EXPECT_EQ(document.hasStreamError(), row.mHasStreamError);
    }
}

TEST_F(ObjectDocument, BodyBeyondTheFileIsReadAsFarAsItGoes) {
    const ByteWriter bytes = makeHeader(1).text("Leaf").u32(3).u64(0xFFFFFFFFFFFFFFFF).u32(9).raw("ab");
    const kt::ktObjectDocument document(bytes.bytes());
    ASSERT_FALSE(document.getProblems().empty());
    EXPECT_THAT(document.getProblems()[0].mWhat, HasSubstr("longer than the file"));
    EXPECT_TRUE(document.hasStreamError());
    ASSERT_EQ(document.getObjects().size(), 1U);
    EXPECT_EQ(dynamic_cast<const Leaf&>(*document.getObjects()[0].mObject).GetName(),
              std::string("ab\0\0\0\0\0\0\0", 9));
}

TEST_F(ObjectDocument, ObjectBeyondTheBudgetIsLostAlone) {
    const ByteWriter greedy = makeRecord("Leaf", 2, ByteWriter().u32(0x7FFFFFFF).raw("x"));
    const ByteWriter links = makeRecord("Branch", 3, ByteWriter().u32(0x10000000).u32(1).u32(2));
    const kt::ktObjectDocument document(
        makeDocument({makeBranch(1, {2, 3, 4}), greedy, links, makeLeaf(4, "good")}).bytes());
    EXPECT_TRUE(document.isLimitReached());
    EXPECT_FALSE(document.hasStreamError());
    // Links to the lost objects are null without a problem of their own.
    const std::string text = "more memory than the document's budget allows";
    const std::uint64_t second = 16 + makeBranch(1, {2, 3, 4}).size();
    EXPECT_THAT(document.getProblems(),
                ElementsAre(isProblem(2, second + 20 + 4, text), isProblem(3, second + greedy.size() + 22 + 4, text)));
    EXPECT_THAT(linkedNames(document, 0), ElementsAre("null", "null", "good"));
}

TEST_F(ObjectDocument, HostSetsTheBudget) {
    const ByteWriter bytes = makeDocument({makeLeaf(1, std::string(5000, 'x'))});
    EXPECT_TRUE(kt::ktObjectDocument(bytes.bytes(), 4000).isLimitReached());
    EXPECT_FALSE(kt::ktObjectDocument(bytes.bytes(), 6000).isLimitReached());
    EXPECT_EQ(kt::getMemoryBudget(1000), 64U * 1024 * 1024 + 64'000);
}

}  // namespace
