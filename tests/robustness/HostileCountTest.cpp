#include "tests/legacy/LegacyLibraryTest.h"
#include "tests/robustness/DamagedDocuments.h"
#include "tools/ktannot/LegacyDocument.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace ktTest {
namespace {

constexpr std::uint32_t sLargestLength = 0x7FFFFFFF;

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
    static void expectHandled(const char* type, const CountedBody& body, const CountedBody::Field& field,
                              std::uint32_t claim) {
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
        for (const auto& [offset, dump] : dumpViews(document, findRecords(file)[1].mBegin)) {
            EXPECT_NE(dump.find("small"), std::string::npos);
        }
        ASSERT_FALSE(document.getProblems().empty());
        for (const kt::ktObjectDocument::Problem& problem : document.getProblems()) {
            EXPECT_EQ(problem.mObjectId, 5U);
        }
        const auto outcome = ktannot::LegacyDocument::load("test", file).getOutcome();
        EXPECT_EQ(outcome, isLost ? ktannot::ExitCode::LimitReached : ktannot::ExitCode::WithProblems);
    }

    static void expectEveryCountHandled(const char* type, const CountedBody& body) {
        for (const CountedBody::Field& field : body.mFields) {
            for (const std::uint32_t claim : {sLargestLength, 0xFFFFFFFFU}) {
                expectHandled(type, body, field, claim);
            }
        }
    }
};

TEST_F(HostileCountTest, LosesAtMostTheObjectThatClaims) {
    for (const unsigned int minor : {13U, 14U, 16U, 21U, 27U}) {
        expectEveryCountHandled("ktCore.ktAnnotationView", makeFullView(minor));
        expectEveryCountHandled("ktCore.ktAnnotationMetadata", makeMetadata(minor));
    }
}

// No claim of a record head can lead out of the file.
TEST_F(HostileCountTest, RecordHeadsMayClaimAnything) {
    const Bytes sound = DocumentBuilder(27).view(2, makeSmallViewBody(27, "a")).build();
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
