#include "document/ktLegacyDocument.h"
#include "tests/legacy/LegacyLibraryTest.h"
#include "tests/robustness/DamagedDocuments.h"

#include <string>
#include <vector>

namespace ktLegacy {
namespace {

using State = ktLegacyDocument::State;
using ktTest::makeSmallView;
using testing::HasSubstr;

class LegacyDocumentTest : public ktTest::LegacyLibraryTest {};

TEST_F(LegacyDocumentTest, ListedViewsComeFirstAndEachOnceAndProblemsKnowTheirView) {
    ktTest::Bytes cut = makeSmallView(27, "cut").getBytes();
    cut.resize(30);
    const ktLegacyDocument document = ktLegacyDocument::read(ktTest::DocumentBuilder(27)
                                                                 .view(10, makeSmallView(27, "unlisted"))
                                                                 .view(11, makeSmallView(27, "a"))
                                                                 .metadata(1, {12, 0, 11, 12})
                                                                 .view(12, makeSmallView(27, "b"))
                                                                 .record("Other", 5, {})
                                                                 .metadata(2, {11, 6})
                                                                 .view(6, cut)
                                                                 .view(14, makeSmallView(27, "also unlisted"))
                                                                 .build());
    std::vector<std::string> names;
    for (const ktLegacyDocument::View& view : document.getViews()) {
        names.push_back(view.mView ? view.mView->mName : "(none)");
    }
    EXPECT_THAT(names, testing::ElementsAre("b", "a", "cut", "unlisted", "also unlisted"));
    ASSERT_EQ(document.getProblems().size(), 2U);
    EXPECT_EQ(document.getProblems()[0].mObject, 5U);
    EXPECT_EQ(document.getFindings()[0].mView, std::nullopt);
    EXPECT_EQ(document.getProblems()[1].mObject, 6U);
    EXPECT_EQ(document.getFindings()[1].mView, 2U);
    EXPECT_EQ(document.getFindings()[1].mCode, ktFindingCode::RecordTooShort);
    EXPECT_TRUE(document.hasStreamError());
    EXPECT_EQ(document.getOutcome(), ktOutcome::WithProblems);
    EXPECT_EQ(document.getVersion().toString(), "6.27");
}

std::span<const std::byte> asBytes(std::string_view text) { return std::as_bytes(std::span(text)); }

TEST_F(LegacyDocumentTest, OutcomesOfVariantDocuments) {
    const struct {
        std::string_view mJson;
        ktOutcome mOutcome;
        const char* mReason;  ///< of the refusal; empty when there is none
        bool mHoldsViewMap;
    } cases[] = {
        {"[]", ktOutcome::AllWell, "", false},
        {"\xEF\xBB\xBF [ ]", ktOutcome::AllWell, "", false},
        {R"({"ver":"6.22","annotations":[]})", ktOutcome::AllWell, "", true},
        {R"({"ver":"6.22","annotations":[{"type":"text","children":[1]}]})", ktOutcome::WithProblems, "", true},
        {R"({"ver":"6.22","annotations":[],"origin":[1e999,0,0]})", ktOutcome::WithProblems, "", true},
        {R"({"name":"settings"})", ktOutcome::Refused, "", false},
        {R"({"ver":5})", ktOutcome::Refused, "", true},
        {R"([1,{"version":2}])", ktOutcome::Refused, "", false},
        {R"([1,{"ver":"6.22","annotations":[]}])", ktOutcome::Refused, "", true},
        {R"([{"ver":"6.22","annotations":[]},{"ver":"6.16"}])", ktOutcome::Refused, "", true},
        {"42", ktOutcome::Refused, "line 1, column 1: the document is a single value", false},
        {R"("ver")", ktOutcome::Refused, "line 1, column 1: the document is a single value", false},
        {"{\"ver\": \"6.22\",\n  oops}", ktOutcome::Refused, "line 2, column 3 (byte 18)", false},
        {"", ktOutcome::Refused, "empty", false},
        {"\x89PNG", ktOutcome::Refused, "neither", false},
        {"{\"a\":\"\n\"}", ktOutcome::Refused, "a control character stands in a text", false},
        {std::string_view("\0\0\0\0", 4), ktOutcome::Refused, "the file holds NUL bytes", false},
        {std::string_view("{\0\"\0", 4), ktOutcome::Refused, "the text is in UTF-16", false},
        {"\xFE\xFF", ktOutcome::Refused, "the text is in UTF-16", false},
        {"KTSTREAM", ktOutcome::Refused, "it has 8 bytes, the header alone takes 16; get a whole copy", false},
    };
    for (const auto& [json, outcome, reason, holdsViewMap] : cases) {
        SCOPED_TRACE(json);
        const ktLegacyDocument document = ktLegacyDocument::read(asBytes(json));
        EXPECT_EQ(document.getState(), *reason == '\0' ? State::Loaded : State::Refused);
        EXPECT_EQ(document.getOutcome(), outcome);
        EXPECT_EQ(document.getReason().empty(), *reason == '\0');
        EXPECT_THAT(document.getReason(), HasSubstr(reason));
        EXPECT_EQ(document.holdsViewMap(), holdsViewMap);
    }
}

}  // namespace
}  // namespace ktLegacy
