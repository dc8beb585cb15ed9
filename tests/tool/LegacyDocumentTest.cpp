#include "library/ktAnnotationLegacyLibrary.h"
#include "platform/system/ktLimits.h"
#include "tests/system/ByteWriter.h"
#include "tests/tool/TemporaryFolder.h"
#include "tools/ktannot/LegacyDocument.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <initializer_list>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace ktannot {
namespace {

using State = LegacyDocument::State;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr std::uint32_t sVersion6_27 = 0x6001B;

class LegacyDocumentTest : public testing::Test {
protected:
    LegacyDocumentTest() { kt::initializeKtAnnotationLegacyLibrary(); }
    ~LegacyDocumentTest() override { kt::terminateKtAnnotationLegacyLibrary(); }

    static LegacyDocument load(const std::string& bytes) {
        return LegacyDocument::load("test", std::as_bytes(std::span(bytes)));
    }
};

std::string makeViewBody(const std::string& name, const std::string& texts = {}, std::uint32_t textCount = 0) {
    ByteWriter body;
    body.text(name);
    for (int number = 0; number < 9; ++number) {
        body.u32(0);
    }
    return body.u32(textCount).u32(0).raw(texts).u32(0).str();
}

std::string makeMetadataBody(std::initializer_list<std::uint32_t> links) {
    ByteWriter body;
    body.text("").u32(5).u32(static_cast<std::uint32_t>(links.size()));
    for (const std::uint32_t link : links) {
        body.u32(link);
    }
    return body.str();
}

struct Record {
    std::string mType;
    std::uint32_t mId;
    std::string mBody;
};

const std::string sView = "ktCore.ktAnnotationView";
const std::string sMetadata = "ktCore.ktAnnotationMetadata";

std::string makeStream(const std::vector<Record>& records) {
    ByteWriter file;
    file.raw("KTSTREAM").u32(sVersion6_27).u32(static_cast<std::uint32_t>(records.size()));
    for (const Record& record : records) {
        file.text(record.mType).u32(record.mId).u64(record.mBody.size()).raw(record.mBody);
    }
    return file.str();
}

std::vector<std::string> getViewNames(const LegacyDocument& document) {
    std::vector<std::string> names;
    for (const LegacyDocument::View& view : document.getViews()) {
        names.push_back(view.mView ? view.mView->mName : "(none)");
    }
    return names;
}

/// A text annotation of a stream that holds levels - 1 further ones within each other.
std::string makeNestedText(int levels) {
    ByteWriter front;
    ByteWriter back;
    for (int level = 1; level <= levels; ++level) {
        front.text("").u32(0).u32(0);                        // name, leaders, measure leaders
        front.u32(0).u32(0).u32(0).u8(0).u8(0).u8(0).u8(0);  // position, colour, flags
        front.u32(level < levels ? 1 : 0);                   // children
        if (level < levels) {
            front.u8(1).u8(1);  // anchor, type
        }
        back.u32(0).text("").u32(0).u32(0);  // metadata, font, height with style, lines
    }
    return front.raw(back.str()).str();
}

/// A view map with annotations within each other.
std::string makeNestedMap(int levels) {
    std::string json = R"({"ver":"6.22","annotations":[)";
    for (int level = 1; level < levels; ++level) {
        json += R"({"type":"text","children":[)";
    }
    json += R"({"type":"text"})";
    for (int level = 1; level < levels; ++level) {
        json += "]}";
    }
    return json + "]}";
}

TEST_F(LegacyDocumentTest, ListedViewsComeFirstAndEachOnce) {
    const std::string stream = makeStream({{sView, 10, makeViewBody("unlisted")},
                                           {sView, 11, makeViewBody("a")},
                                           {sMetadata, 1, makeMetadataBody({12, 0, 11, 12})},
                                           {sView, 12, makeViewBody("b")},
                                           {sMetadata, 2, makeMetadataBody({11, 13})},
                                           {sView, 13, makeViewBody("c")},
                                           {sView, 14, makeViewBody("also unlisted")}});
    const LegacyDocument document = load(stream);
    EXPECT_THAT(getViewNames(document), ElementsAre("b", "a", "c", "unlisted", "also unlisted"));
    EXPECT_EQ(document.getOutcome(), ExitCode::AllWell);
    EXPECT_EQ(document.getVersion(), "6.27");
}

TEST_F(LegacyDocumentTest, ProblemsKnowTheirView) {
    const LegacyDocument document = load(makeStream({{sView, 4, makeViewBody("whole")},
                                                     {"ktCore.ktOther", 5, "?"},
                                                     {sView, 6, makeViewBody("cut").substr(0, 30)},
                                                     {sMetadata, 1, makeMetadataBody({6, 4})}}));
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
        State mState;
        ExitCode mOutcome;
    } cases[] = {
        {R"([])", State::Loaded, ExitCode::AllWell},
        {"\xEF\xBB\xBF [ ]", State::Loaded, ExitCode::AllWell},
        {R"({"ver":"6.22","annotations":[]})", State::Loaded, ExitCode::AllWell},
        {R"({"ver":"6.22","origin":1,"annotations":[]})", State::Loaded, ExitCode::WithProblems},
        {R"({"ver":"6.22","annotations":[{"type":"text","children":[1]}]})", State::Loaded, ExitCode::WithProblems},
        {R"({})", State::Loaded, ExitCode::Refused},
        {R"([1])", State::Loaded, ExitCode::Refused},
        {R"([{"ver":"6.22","annotations":[]},{"ver":"6.16"}])", State::Loaded, ExitCode::Refused},
        {R"(42)", State::Refused, ExitCode::Refused},
        {R"({)", State::Refused, ExitCode::Refused},
        {"", State::Refused, ExitCode::Refused},
        {"KTSTREAM", State::Refused, ExitCode::Refused},
    };
    for (const auto& test : cases) {
        const LegacyDocument document = load(test.mJson);
        EXPECT_EQ(document.getState(), test.mState) << test.mJson;
        EXPECT_EQ(document.getOutcome(), test.mOutcome) << test.mJson;
        EXPECT_EQ(document.getReason().empty(), test.mState == State::Loaded) << test.mJson;
    }
}

TEST_F(LegacyDocumentTest, RefusalsNamePlaceAndRemedy) {
    EXPECT_THAT(load("{\"ver\": \"6.22\",\n  oops}").getReason(),
                testing::AllOf(HasSubstr("line 2, column 3"), HasSubstr("byte 18"), HasSubstr("export")));
    EXPECT_THAT(load("\x89PNG").getReason(), HasSubstr("neither"));
    EXPECT_THAT(load("KTSTREAM").getReason(), testing::AllOf(HasSubstr("8 bytes"), HasSubstr("whole copy")));
}

TEST_F(LegacyDocumentTest, LostAnnotationsAreAProblemOfTheirView) {
    const LegacyDocument document = load(R"([
        {"ver":"6.22","annotations":[]},
        {"ver":"6.20","name":"top","textannotations":[{},1,2],"rasterannotations":[{"sizeem":1}]}])");
    ASSERT_EQ(document.getProblems().size(), 1U);
    EXPECT_EQ(document.getProblems()[0].mWhat, "3 of 4 annotations of view 'top' could not be read");
    EXPECT_EQ(document.getProblems()[0].mView, 1U);
    EXPECT_EQ(document.getViews()[0].mMessagesEnd, 0U);
    EXPECT_EQ(document.getViews()[1].mMessagesBegin, 0U);
    EXPECT_EQ(document.getViews()[1].mMessagesEnd, document.getMessages().size());
    EXPECT_EQ(document.getViews()[1].mVersion, "6.20");
}

TEST_F(LegacyDocumentTest, NestingLimitIsNamedOnlyWhenSomethingIsLost) {
    const int limit = kt::sMaxAnnotationDepth;
    for (const bool isStream : {false, true}) {
        const auto make = [isStream](int levels) {
            return isStream ? makeStream({{sView, 1, makeViewBody("deep", makeNestedText(levels), 1)}})
                            : makeNestedMap(levels);
        };
        const LegacyDocument whole = load(make(limit));
        EXPECT_EQ(whole.getOutcome(), ExitCode::AllWell);
        EXPECT_EQ(whole.getLimit(), "");
        const LegacyDocument cut = load(make(limit + 1));
        EXPECT_EQ(cut.getOutcome(), ExitCode::LimitReached);
        EXPECT_THAT(cut.getLimit(), HasSubstr("512 levels"));
    }
}

TEST_F(LegacyDocumentTest, JsonFilesOfFoldersWithoutAViewMapAreSkipped) {
    const test::TemporaryFolder folder;
    const struct {
        const char* mJson;
        State mState;
    } cases[] = {
        {R"({"name":"settings"})", State::Skipped},
        {R"([])", State::Skipped},
        {R"([1,{"version":2}])", State::Skipped},
        {R"("ver")", State::Skipped},
        {R"({"ver":5})", State::Loaded},
        {R"([1,{"ver":"6.22","annotations":[]}])", State::Loaded},
        {R"({"ver")", State::Refused},
    };
    for (const auto& test : cases) {
        Input input;
        input.mSource = input.mPath = folder.write("x.json", test.mJson);
        EXPECT_NE(LegacyDocument::load(input).getState(), State::Skipped) << test.mJson;
        input.mIsJsonFromFolder = true;
        EXPECT_EQ(LegacyDocument::load(input).getState(), test.mState) << test.mJson;
    }
}

TEST_F(LegacyDocumentTest, MemoryLimitBoundsBothForms) {
    const test::TemporaryFolder folder;
    Input input;
    input.mSource = input.mPath = folder.write("x.json", makeNestedMap(100));
    EXPECT_EQ(LegacyDocument::load(input, 1U << 30U).getOutcome(), ExitCode::AllWell);
    EXPECT_EQ(LegacyDocument::load(input, 1000).getOutcome(), ExitCode::LimitReached);
    input.mSource = input.mPath = folder.write("x.kts", makeStream({{sView, 1, makeViewBody(std::string(9000, 'n'))}}));
    EXPECT_EQ(LegacyDocument::load(input, 1U << 30U).getOutcome(), ExitCode::AllWell);
    EXPECT_EQ(LegacyDocument::load(input, 1000).getOutcome(), ExitCode::LimitReached);
}

}  // namespace
}  // namespace ktannot
