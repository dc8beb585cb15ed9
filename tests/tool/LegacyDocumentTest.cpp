#include "tests/legacy/LegacyLibraryTest.h"
#include "tests/robustness/DamagedDocuments.h"
#include "tests/tool/TemporaryFolder.h"
#include "tools/ktannot/LegacyDocument.h"

#include <string>
#include <vector>

namespace ktannot {
namespace {

using State = LegacyDocument::State;
using ktTest::makeSmallView;
using testing::HasSubstr;

class LegacyDocumentTest : public ktTest::LegacyLibraryTest {};

TEST_F(LegacyDocumentTest, ListedViewsComeFirstAndEachOnceAndProblemsKnowTheirView) {
    ktTest::Bytes cut = makeSmallView(27, "cut").getBytes();
    cut.resize(30);
    const LegacyDocument document = LegacyDocument::load("test", ktTest::DocumentBuilder(27)
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
    for (const LegacyDocument::View& view : document.getViews()) {
        names.push_back(view.mView ? view.mView->mName : "(none)");
    }
    EXPECT_THAT(names, testing::ElementsAre("b", "a", "cut", "unlisted", "also unlisted"));
    ASSERT_EQ(document.getProblems().size(), 2U);
    EXPECT_EQ(document.getProblems()[0].mObject, 5U);
    EXPECT_EQ(document.getProblems()[0].mView, std::nullopt);
    EXPECT_EQ(document.getProblems()[1].mObject, 6U);
    EXPECT_EQ(document.getProblems()[1].mView, 2U);
    EXPECT_TRUE(document.hasStreamError());
    EXPECT_EQ(document.getOutcome(), ExitCode::WithProblems);
    EXPECT_EQ(document.getVersion(), "6.27");
}

TEST_F(LegacyDocumentTest, OutcomesOfVariantDocuments) {
    const struct {
        const char* mJson;
        ExitCode mOutcome;
        const char* mReason;    ///< of the refusal; empty when there is none
        State mStateInFolders;  ///< as a file that was found by its suffix
    } cases[] = {
        {"[]", ExitCode::AllWell, "", State::Skipped},
        {"\xEF\xBB\xBF [ ]", ExitCode::AllWell, "", State::Skipped},
        {R"({"ver":"6.22","annotations":[]})", ExitCode::AllWell, "", State::Loaded},
        {R"({"ver":"6.22","annotations":[{"type":"text","children":[1]}]})", ExitCode::WithProblems, "", State::Loaded},
        {R"({"name":"settings"})", ExitCode::Refused, "", State::Skipped},
        {R"({"ver":5})", ExitCode::Refused, "", State::Loaded},
        {R"([1,{"version":2}])", ExitCode::Refused, "", State::Skipped},
        {R"([1,{"ver":"6.22","annotations":[]}])", ExitCode::Refused, "", State::Loaded},
        {R"([{"ver":"6.22","annotations":[]},{"ver":"6.16"}])", ExitCode::Refused, "", State::Loaded},
        {"42", ExitCode::Refused, "line 1, column 1: the document is a single value", State::Skipped},
        {R"("ver")", ExitCode::Refused, "line 1, column 1: the document is a single value", State::Skipped},
        {"{\"ver\": \"6.22\",\n  oops}", ExitCode::Refused, "line 2, column 3 (byte 18)", State::Refused},
        {"", ExitCode::Refused, "empty", State::Refused},
        {"\x89PNG", ExitCode::Refused, "neither", State::Refused},
        {"KTSTREAM", ExitCode::Refused, "it has 8 bytes, the header alone takes 16; get a whole copy", State::Refused},
    };
    const test::TemporaryFolder folder;
    for (const auto& [json, outcome, reason, stateInFolders] : cases) {
        SCOPED_TRACE(json);
        Input input;
        input.mSource = input.mPath = folder.write("x.json", json);
        const LegacyDocument document = LegacyDocument::load(input);
        EXPECT_EQ(document.getState(), *reason == '\0' ? State::Loaded : State::Refused);
        EXPECT_EQ(document.getOutcome(), outcome);
        EXPECT_EQ(document.getReason().empty(), *reason == '\0');
        EXPECT_THAT(document.getReason(), HasSubstr(reason));
        input.mIsJsonFromFolder = true;
        EXPECT_EQ(LegacyDocument::load(input).getState(), stateInFolders);
    }
}

}  // namespace
}  // namespace ktannot
