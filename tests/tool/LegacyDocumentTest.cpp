#include "library/ktAnnotationLegacyLibrary.h"
#include "tests/system/ByteWriter.h"
#include "tests/tool/TemporaryFolder.h"
#include "tools/ktannot/LegacyDocument.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <vector>

namespace ktannot {
namespace {

using State = LegacyDocument::State;
using testing::ElementsAre;
using testing::HasSubstr;

class LegacyDocumentTest : public testing::Test {
protected:
    LegacyDocumentTest() { kt::initializeKtAnnotationLegacyLibrary(); }
    ~LegacyDocumentTest() override { kt::terminateKtAnnotationLegacyLibrary(); }

    static LegacyDocument load(const ByteWriter& file) { return LegacyDocument::load("test", file.bytes()); }
};

std::string makeRecord(const std::string& type, std::uint32_t id, const std::string& body) {
    return ByteWriter().text("ktCore.kt" + type).u32(id).u64(body.size()).raw(body).str();
}

/// A view without annotations. Of a damaged one the end is missing.
std::string makeView(std::uint32_t id, const std::string& name, bool isDamaged = false) {
    const std::size_t rest = isDamaged ? 20 : 9 * 4 + 2 * 4 + 4;  // plane, two counts, empty map
    return makeRecord("AnnotationView", id, ByteWriter().text(name).raw(std::string(rest, '\0')).str());
}

std::string makeMetadata(std::uint32_t id, std::initializer_list<std::uint32_t> views) {
    ByteWriter body;
    body.text("").u32(5).u32(static_cast<std::uint32_t>(views.size()));
    for (const std::uint32_t view : views) {
        body.u32(view);
    }
    return makeRecord("AnnotationMetadata", id, body.str());
}

ByteWriter makeStream(std::initializer_list<std::string> records) {
    ByteWriter file;
    file.raw("KTSTREAM").u32(0x6001B).u32(static_cast<std::uint32_t>(records.size()));  // version 6.27
    for (const std::string& record : records) {
        file.raw(record);
    }
    return file;
}

TEST_F(LegacyDocumentTest, ListedViewsComeFirstAndEachOnce) {
    const LegacyDocument document = load(makeStream({
        makeView(10, "unlisted"),
        makeView(11, "a"),
        makeMetadata(1, {12, 0, 11, 12}),
        makeView(12, "b"),
        makeMetadata(2, {11, 13}),
        makeView(13, "c"),
        makeView(14, "also unlisted"),
    }));
    std::vector<std::string> names;
    for (const LegacyDocument::View& view : document.getViews()) {
        names.push_back(view.mView ? view.mView->mName : "(none)");
    }
    EXPECT_THAT(names, ElementsAre("b", "a", "c", "unlisted", "also unlisted"));
    EXPECT_EQ(document.getOutcome(), ExitCode::AllWell);
    EXPECT_EQ(document.getVersion(), "6.27");
}

TEST_F(LegacyDocumentTest, ProblemsKnowTheirView) {
    const LegacyDocument document = load(makeStream({
        makeView(4, "whole"),
        makeRecord("Other", 5, "?"),
        makeView(6, "cut", true),
        makeMetadata(1, {6, 4}),
    }));
    ASSERT_EQ(document.getProblems().size(), 2U);
    EXPECT_EQ(document.getProblems()[0].mObject, 5U);
    EXPECT_EQ(document.getProblems()[0].mView, std::nullopt);
    EXPECT_EQ(document.getProblems()[1].mObject, 6U);
    EXPECT_EQ(document.getProblems()[1].mView, 0U);
    EXPECT_TRUE(document.hasStreamError());
    EXPECT_EQ(document.getOutcome(), ExitCode::WithProblems);
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
