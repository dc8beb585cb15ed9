#include "document/ktLegacyDocument.h"
#include "tests/legacy/LegacyLibraryTest.h"
#include "tests/robustness/DamagedDocuments.h"

#include <cstring>

namespace ktTest {
namespace {

constexpr std::uint32_t sLargestLength = 0x7FFFFFFF;

class HostileCountTest : public LegacyLibraryTest {
protected:
    /// Reads a document of the record between two small views, with one count replaced.
    static void expectHandled(const char* type, const StreamBuilder& body, const Claim& claim, std::uint32_t value) {
        SCOPED_TRACE(testing::Message() << type << ' ' << body.getVersion().toString() << " claims " << value << " at "
                                        << claim.mOffset);
        Bytes bytes = body.getBytes();
        std::memcpy(bytes.data() + claim.mOffset, &value, sizeof(value));
        const unsigned int minor = body.getVersion().getMinor();
        const StreamBuilder small = makeSmallView(minor, "small");
        const Bytes file = DocumentBuilder(minor).view(6, small).record(type, 5, bytes).view(7, small).build();

        const kt::ktObjectDocument document(file);
        const bool isLost = document.isLimitReached();
        EXPECT_EQ(document.getObjects().size(), isLost ? 2U : 3U);
        if (claim.mKind == Claim::List || (claim.mKind == Claim::Text && value == sLargestLength)) {
            EXPECT_TRUE(isLost);
            EXPECT_FALSE(document.hasStreamError());
            ASSERT_EQ(document.getProblems().size(), 1U);
            EXPECT_THAT(document.getProblems()[0].mWhat, testing::HasSubstr("the object is damaged: it claims"));
        } else if (claim.mKind == Claim::Piece) {
            EXPECT_NE(isLost, document.hasStreamError());
        }
        for (const auto& [offset, dump] : dumpViews(document, findRecords(file)[1].mBegin)) {
            EXPECT_THAT(dump, testing::HasSubstr("small"));
        }
        EXPECT_THAT(document.getProblems(),
                    testing::Each(testing::Field(&kt::ktObjectDocument::Problem::mObjectId, 5)));
        const auto outcome = ktLegacy::ktLegacyDocument::read(file).getOutcome();
        EXPECT_EQ(outcome, isLost ? ktLegacy::ktOutcome::LimitReached : ktLegacy::ktOutcome::WithProblems);
    }
};

TEST_F(HostileCountTest, LosesAtMostTheObjectThatClaims) {
    for (const unsigned int minor : {13U, 14U, 16U, 21U, 27U}) {
        const StreamBuilder metadata = StreamBuilder(minor).text("m").u32(5).count(1).u32(7);
        for (const auto& [type, body] : {std::pair("ktCore.ktAnnotationView", makeFullView(minor)),
                                         std::pair("ktCore.ktAnnotationMetadata", metadata)}) {
            for (const Claim& claim : body.getClaims()) {
                expectHandled(type, body, claim, sLargestLength);
                expectHandled(type, body, claim, 0xFFFFFFFFU);
            }
        }
    }
}

// No claim of a record head can lead out of the file.
TEST_F(HostileCountTest, RecordHeadsMayClaimAnything) {
    const Bytes sound = DocumentBuilder(27).view(2, makeSmallView(27, "a")).build();
    const RecordPlace record = findRecords(sound).front();
    for (const std::uint64_t claim : {0xFFFFFFFFFFFFFFFFULL, 0x7FFFFFFFFFFFFFFFULL, 0x8000000000000000ULL,
                                      0xFFFFFFFFFFFFFFFFULL - record.mBody + 1, 0x100000000ULL}) {
        Bytes bytes = sound;
        std::memcpy(bytes.data() + record.mLength, &claim, sizeof(claim));
        const kt::ktObjectDocument document(bytes);
        EXPECT_EQ(document.getProblems().size(), 1U) << claim;
        EXPECT_EQ(dumpViews(document), dumpViews(kt::ktObjectDocument(sound))) << claim;
    }
}

}  // namespace
}  // namespace ktTest
