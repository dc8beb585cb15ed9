#include "legacy/ktAnnotationMetaData.h"
#include "platform/system/ktObjectDocument.h"
#include "tests/legacy/LegacyLibraryTest.h"
#include "tests/legacy/StreamBuilder.h"
#include "tests/robustness/DamagedDocuments.h"
#include "tools/ktannot/LegacyDocument.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace ktTest {
namespace {

constexpr std::uint32_t sLargestLength = 0x7FFFFFFF;

/// What a claim beyond the data leads to.
enum class Claim {
    List,   ///< all at once: the budget ends it
    Text,   ///< all at once, but a negative length is an empty text
    Piece,  ///< piece by piece: the end of the data ends it, or what is then taken for a length of the next field
};

struct CountField {
    const char* mName;
    std::size_t mOffset;
    Claim mClaim;
};

/// A record body and its 32-bit counts.
class CountedBody {
public:
    explicit CountedBody(unsigned int minor) : mBody(minor) {}

    void count(const char* name, std::uint32_t value) {
        mark(name, Claim::List);
        mBody.u32(value);
    }
    void text(const char* name, std::string_view value) {
        mark(name, Claim::Text);
        mBody.text(value);
    }
    void mark(const char* name, Claim claim) { mFields.push_back({name, mBody.getSize(), claim}); }

    StreamBuilder mBody;
    std::vector<CountField> mFields;
};

void addLeaders(CountedBody& body) {
    body.count("leaders", 1);
    body.mBody.leader(1, 2, 3, 0);
}

void addBase(CountedBody& body) {
    body.text("annotation name", "n");
    addLeaders(body);
    if (body.mBody.isFrom(17)) {
        body.count("measure leaders", 1);
        body.mBody.measure(1, 0);
    }
    body.mBody.placement(0);
    if (body.mBody.isFrom(22)) {
        body.count("children", 1);
        body.mBody.u8(0).u8(0);
        body.mark("map", Claim::Piece);
        body.mBody.u32(1);
        body.mark("map key", Claim::Piece);
        body.mBody.text("k").u8(11);
        body.mark("list in map", Claim::Piece);
        body.mBody.u32(1).u8(3);
        body.mark("text in map", Claim::Piece);
        body.mBody.text("v");
    }
}

void addLines(CountedBody& body) {
    body.count("lines", 1);
    body.count("segments", 1);
    if (!body.mBody.isFrom(17)) {
        body.mark("segment text", Claim::Text);
    }
    body.mBody.segmentStart("s").u8(1);
    body.text("font of a segment", "F");
    body.mBody.u16(0).u8(0).u8(0);
}

CountedBody makeView(unsigned int minor) {
    CountedBody body(minor);
    body.text("view name", "v");
    body.mBody.vector(0, 0, 0).vector(0, 0, 1).vector(1, 0, 0);
    body.count("text annotations", 1);
    if (!body.mBody.isFrom(15)) {
        body.text("default font", "F");
        body.mBody.u16(0).u8(0).u8(0);
        addLeaders(body);
        addLines(body);
        body.mBody.placement(0);
        return body;
    }
    body.count("raster annotations", 1);
    addBase(body);
    body.text("default font", "F");
    body.mBody.u16(0).u8(0).u8(0);
    addLines(body);
    addBase(body);
    body.text("raster name", "p");
    body.mBody.f32(1).f32(1);
    if (body.mBody.isFrom(27)) {
        body.mark("view map", Claim::Piece);
        body.mBody.u32(0);
    }
    return body;
}

CountedBody makeMetadata(unsigned int minor) {
    CountedBody body(minor);
    body.text("metadata name", "m");
    body.mBody.u32(5);
    body.count("views", 1);
    body.mBody.u32(7);
    return body;
}

class HostileCountTest : public LegacyLibraryTest {
protected:
    /// Reads a document of the record between two small views, with one count replaced.
    static void expectHandled(const char* type, const CountedBody& body, const CountField& field, std::uint32_t claim) {
        SCOPED_TRACE(std::string(field.mName) + " at " + std::to_string(field.mOffset) + " of version " +
                     body.mBody.getVersion().toString() + " claims " + std::to_string(claim));
        Bytes bytes(body.mBody.getBytes().begin(), body.mBody.getBytes().end());
        std::memcpy(bytes.data() + field.mOffset, &claim, sizeof(claim));
        const unsigned int minor = body.mBody.getVersion().getMinor();
        const Bytes small = makeSmallViewBody(minor, "small");
        const Bytes file = DocumentBuilder(minor).view(6, small).record(type, 5, bytes).view(7, small).build();

        const kt::ktObjectDocument document(file);
        const bool isLost = document.isLimitReached();
        EXPECT_EQ(document.getObjects().size(), isLost ? 2U : 3U);
        if (field.mClaim == Claim::List || (field.mClaim == Claim::Text && claim == sLargestLength)) {
            EXPECT_TRUE(isLost);
            EXPECT_FALSE(document.hasStreamError());
            EXPECT_EQ(document.getProblems().size(), 1U);
        } else if (field.mClaim == Claim::Piece) {
            EXPECT_NE(isLost, document.hasStreamError());
        }
        for (const auto& [offset, dump] : dumpViews(document)) {
            if (offset != findRecords(file)[1].mBegin) {
                EXPECT_NE(dump.find("small"), std::string::npos);
            }
        }
        ASSERT_FALSE(document.getProblems().empty());
        for (const kt::ktObjectDocument::Problem& problem : document.getProblems()) {
            EXPECT_EQ(problem.mObjectId, 5U);
        }
        const auto outcome = ktannot::LegacyDocument::load("test", file).getOutcome();
        EXPECT_EQ(outcome, isLost ? ktannot::ExitCode::LimitReached : ktannot::ExitCode::WithProblems);
    }

    static void expectEveryCountHandled(const char* type, const CountedBody& body) {
        for (const CountField& field : body.mFields) {
            for (const std::uint32_t claim : {sLargestLength, 0xFFFFFFFFU}) {
                expectHandled(type, body, field, claim);
            }
        }
    }
};

TEST_F(HostileCountTest, LosesAtMostTheObjectThatClaims) {
    for (const unsigned int minor : {13U, 16U, 21U, 27U}) {
        expectEveryCountHandled("ktCore.ktAnnotationView", makeView(minor));
        expectEveryCountHandled("ktCore.ktAnnotationMetadata", makeMetadata(minor));
    }
}

TEST_F(HostileCountTest, UndamagedRecordsOfTheTestAreSound) {
    constexpr unsigned int minor = 27;
    const kt::ktObjectDocument document(
        DocumentBuilder(minor)
            .view(7, makeView(minor).mBody.getBytes())
            .record("ktCore.ktAnnotationMetadata", 5, makeMetadata(minor).mBody.getBytes())
            .build());
    EXPECT_TRUE(document.getProblems().empty());
}

// The links of a lost object are dropped with it, and links to a lost object become null without a word.
TEST_F(HostileCountTest, LostObjectsLeaveNoLinks) {
    constexpr unsigned int minor = 27;
    StreamBuilder claiming(minor);
    claiming.viewStart("lost").u32(0x7FFFFFFF).u32(0);
    StreamBuilder links(minor);
    links.text("").u32(5).u32(0x10000000).u32(99).u32(99);
    const kt::ktObjectDocument document(DocumentBuilder(minor)
                                            .metadata(1, {2, 3})
                                            .view(2, claiming.getBytes())
                                            .record("ktCore.ktAnnotationMetadata", 4, links.getBytes())
                                            .view(3, makeSmallViewBody(minor, "small"))
                                            .build());
    ASSERT_EQ(document.getProblems().size(), 2U);
    EXPECT_EQ(document.getProblems()[0].mObjectId, 2U);
    EXPECT_EQ(document.getProblems()[1].mObjectId, 4U);
    const auto* metadata = dynamic_cast<const ktLegacy::ktAnnotationMetaData*>(document.getObjects()[0].mObject.get());
    ASSERT_EQ(metadata->getViews().size(), 2U);
    EXPECT_EQ(metadata->getViews()[0].get(), nullptr);
    EXPECT_EQ(metadata->getViews()[1].get(), document.getObjects()[1].mObject.get());
}

// No claim of a record head can lead out of the file.
TEST_F(HostileCountTest, RecordHeadsMayClaimAnything) {
    constexpr unsigned int minor = 27;
    const Bytes sound = DocumentBuilder(minor).view(2, makeSmallViewBody(minor, "a")).build();
    const RecordPlace record = findRecords(sound).front();
    for (const std::uint64_t claim : {0xFFFFFFFFFFFFFFFFULL, 0x7FFFFFFFFFFFFFFFULL, 0x8000000000000000ULL,
                                      0xFFFFFFFFFFFFFFFFULL - record.mBody + 1, 0x100000000ULL}) {
        Bytes bytes = sound;
        std::memcpy(bytes.data() + record.mLength, &claim, sizeof(claim));
        const kt::ktObjectDocument document(bytes);
        EXPECT_EQ(document.getProblems().size(), 1U) << claim;
        EXPECT_EQ(dumpViews(document), dumpViews(kt::ktObjectDocument(sound))) << claim;
    }
    for (const std::size_t offset : {std::size_t{12}, record.mBegin}) {
        for (const std::uint32_t claim : {0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
            Bytes bytes = sound;
            std::memcpy(bytes.data() + offset, &claim, sizeof(claim));
            const kt::ktObjectDocument document(bytes);
            ASSERT_EQ(document.getProblems().size(), 1U) << offset << ' ' << claim;
            EXPECT_EQ(document.getProblems().front().mObjectId, 0U);
        }
    }
}

}  // namespace
}  // namespace ktTest
