#include "legacy/ktAnnotationMetaData.h"
#include "platform/system/memory/ktLimits.h"
#include "tests/legacy/LegacyLibraryTest.h"
#include "tests/robustness/DamagedDocuments.h"

#include <new>
#include <string>
#include <vector>

namespace ktTest {
namespace {

using kt::ktObjectDocument;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr std::uint64_t sViewHead = 4 + 23 + 4 + 8;      ///< length and bytes of the type name, id, body length
constexpr std::uint64_t sMetadataHead = 4 + 27 + 4 + 8;  ///< the same of metadata
constexpr std::uint32_t sHuge = 0x7FFFFFFF;

kt::ktRttiInterface* failToAllocate(kt::ktBaseStream& /*stream*/) { throw std::bad_alloc(); }

class ObjectDocument : public LegacyLibraryTest {
protected:
    ObjectDocument() { kt::ktRttiInterface::RegisterFactoryFunction("Failing", failToAllocate); }
    ~ObjectDocument() override { kt::ktRttiInterface::UnregisterFactoryFunction("Failing"); }

    /// Names of the views that a metadata object leads to.
    static std::vector<std::string> getLinkedNames(const ktObjectDocument& document, std::size_t index) {
        const auto& object = *document.getObjects().at(index).mObject;
        std::vector<std::string> names;
        for (const auto& view : dynamic_cast<const ktLegacy::ktAnnotationMetaData&>(object).getViews()) {
            names.push_back(view ? view->GetName() : "null");
        }
        return names;
    }
};

Bytes makeView(const std::string& name) { return makeSmallView(27, name).getBytes(); }

Bytes append(Bytes bytes, const StreamBuilder& more) {
    bytes.insert(bytes.end(), more.getBytes().begin(), more.getBytes().end());
    return bytes;
}

auto isProblem(std::uint32_t objectId, std::uint64_t offset, const std::string& text) {
    using Problem = ktObjectDocument::Problem;
    return AllOf(testing::Field("object", &Problem::mObjectId, objectId),
                 testing::Field("offset", &Problem::mOffset, offset),
                 testing::Field("text", &Problem::mWhat, HasSubstr(text)));
}

TEST_F(ObjectDocument, LinksLeadForwardsAndBackwardsToTheFirstHolder) {
    const Bytes bytes = DocumentBuilder(27)
                            .view(9, makeView("a"))
                            .metadata(1, {7, 0, 9, 7})
                            .view(7, makeView("b"))
                            .view(7, makeView("second holder"))
                            .build();
    const ktObjectDocument document(bytes);
    EXPECT_EQ(document.getVersion(), kt::ktStreamVersion(6, 27));
    EXPECT_THAT(getLinkedNames(document, 1), ElementsAre("b", "null", "a", "b"));
    ASSERT_EQ(document.getObjects().size(), 4U);
    EXPECT_EQ(document.getObjects()[3].mOffset, findRecords(bytes)[3].mBegin);
}

TEST_F(ObjectDocument, RefusesWhatHasNoHeader) {
    const std::pair<StreamBuilder, const char*> cases[] = {
        {StreamBuilder(), "empty"},
        {StreamBuilder().bytes("MAERTSTK").u32(1).u32(0), "KTSTREAM"},
        {StreamBuilder().bytes("KTSTREAM"), "header"},
        {StreamBuilder().bytes("KTSTREAM").u32(0x6001B).bytes("abc"), "15 bytes"},
    };
    for (const auto& [bytes, reason] : cases) {
        EXPECT_THAT(ktObjectDocument(bytes.getBytes()).getRefusal(), HasSubstr(reason));
    }
    EXPECT_FALSE(ktObjectDocument(DocumentBuilder(27).build()).isRefused());
}

TEST_F(ObjectDocument, ReportsOneProblemAndReadsOn) {
    const Bytes good = makeView("good");
    const Bytes rest = append(good, StreamBuilder().bytes("???"));
    const Bytes one = DocumentBuilder(27).view(5, good).build();
    const std::uint64_t second = one.size();
    Bytes more = one;
    std::fill_n(more.begin() + 12, 4, std::byte{0xFF});  // the count of objects
    Bytes two = one;
    two[12] = std::byte{2};
    const auto view = [](std::uint32_t id, const Bytes& body) { return DocumentBuilder(27).view(id, body); };
    const struct {
        Bytes mBytes;
        std::uint32_t mObjectId;
        std::uint64_t mOffset;
        const char* mText;
        std::size_t mObjects;  ///< that are kept
        bool mHasStreamError = false;
    } rows[] = {
        {DocumentBuilder(27).record("Twig", 3, good).view(5, good).build(), 3, 16, "unknown type name 'Twig'", 1},
        {view(0, good).view(5, good).build(), 0, 16, "id 0", 2},
        {view(5, good).view(5, good).build(), 5, second, "taken", 2},
        {view(3, rest).view(5, good).build(), 3, 16 + sViewHead + good.size(), "3 bytes left over", 2},
        {view(3, {}).view(5, good).build(), 3, 16 + sViewHead, "damaged", 2, true},
        {append(one, StreamBuilder().bytes("!")), 0, second, "1 byte after the last record", 1},
        {more, 0, second, "record 2 of 4294967295", 1},
        {append(two, StreamBuilder().text("Leaf").u32(7)), 0, second, "inside the head", 1},
        {append(two, StreamBuilder().u32(0xFFFFFFFF).u64(0).u64(0)), 0, second, "claims -1 bytes", 1},
        {append(two, StreamBuilder().u32(sHuge).u64(0)), 0, second, "claims 2147483647 bytes", 1},
        {DocumentBuilder(27).metadata(3, {4, 5}).view(5, good).build(), 3, 16 + sMetadataHead + 12,
         "object 4 leads nowhere", 2},
        {DocumentBuilder(27).metadata(3, {3, 5}).view(5, good).build(), 3, 16 + sMetadataHead + 12,
         "not the type wanted", 2},
        {DocumentBuilder(27).record("Failing", 3, {}).view(5, good).build(), 3, 16 + 23, "not enough memory", 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.mText);
        const ktObjectDocument document(row.mBytes);
        EXPECT_THAT(document.getProblems(), ElementsAre(isProblem(row.mObjectId, row.mOffset, row.mText)));
        EXPECT_EQ(document.getObjects().size(), row.mObjects);
        EXPECT_EQ(document.hasStreamError(), row.mHasStreamError);
    }
}

TEST_F(ObjectDocument, ObjectBeyondTheBudgetIsLostAlone) {
    const StreamBuilder greedy = StreamBuilder().u32(sHuge).bytes("x");
    const StreamBuilder links = StreamBuilder().text("").u32(5).u32(0x10000000).u32(1).u32(2);
    const Bytes bytes = DocumentBuilder(27)
                            .metadata(1, {2, 3, 4})
                            .view(2, greedy.getBytes())
                            .record("ktCore.ktAnnotationMetadata", 3, links.getBytes())
                            .view(4, makeView("good"))
                            .build();
    const ktObjectDocument document(bytes);
    EXPECT_TRUE(document.isLimitReached());
    EXPECT_FALSE(document.hasStreamError());
    // Links to the lost objects are null without a problem of their own.
    EXPECT_THAT(document.getProblems(),
                ElementsAre(isProblem(2, findRecords(bytes)[1].mBody + 4, "but only 1 byte are left"),
                            isProblem(3, findRecords(bytes)[2].mBody + 12, "it claims 268435456 elements")));
    EXPECT_THAT(getLinkedNames(document, 0), ElementsAre("null", "null", "good"));
}

TEST_F(ObjectDocument, HostSetsTheBudget) {
    const Bytes bytes = DocumentBuilder(27).view(1, makeView(std::string(5000, 'x'))).build();
    const ktObjectDocument lost(bytes, 4000);
    EXPECT_TRUE(lost.isLimitReached());
    // The bytes are there: a larger limit would help.
    EXPECT_THAT(lost.getProblems(), ElementsAre(isProblem(1, findRecords(bytes)[0].mBody + 4, "Raise the memory")));
    EXPECT_FALSE(ktObjectDocument(bytes, 12'000).isLimitReached());
    EXPECT_EQ(kt::getMemoryBudget(1000), 64U * 1024 * 1024 + 64'000);
}

}  // namespace
}  // namespace ktTest
