#include "tests/tool/ToolRunner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ktannot::test {
namespace {

using testing::HasSubstr;

TEST(CheckCommand, SamplesAreAllWell) {
    const ToolResult result = runTool({"check", KT_SAMPLES_DIR});
    EXPECT_EQ(result.mOut,
              "12 documents: 84 views, 296 annotations (and 305 children); 0 problems, 0 messages; "
              "refused: 0 documents, 0 views\n");
    EXPECT_EQ(result.mError, "");
    EXPECT_EQ(result.mExitCode, 0);
}

TEST(CheckCommand, ReportsEverythingByDocumentAndWritesNothing) {
    const TemporaryFolder folder;
    folder.write("a.json", R"([{"ver":"6.22","name":"n","axis":0,"annotations":[1,{"type":"text"}]},{"ver":"1.0"}])");
    folder.write("b.json", R"({"ver":"6.22","annotations":[]})");
    folder.write("c.json", R"({"name":"settings"})");
    folder.write("d.json", "[\n,]");
    const ToolResult result = runTool({"check", folder.getPath()});
    EXPECT_EQ(
        result.mOut,
        folder.at("a.json") +
            ":\n"
            "  view 1: invalid 'axis' field\n"
            "  view 1: invalid 'annotations' field content\n"
            "  view 2: invalid version 1.0\n"
            "  view 2: refused\n"
            "  1 of 2 annotations of view 'n' could not be read\n" +
            folder.at("d.json") +
            ": refused: not valid JSON at line 2, column 1 (byte 2): Invalid value; correct it there or export the "
            "document again\n"
            "3 documents: 2 views, 1 annotation; 1 problem, 3 messages; refused: 1 document, 1 view; "
            "skipped: 1 file without a view map\n");
    EXPECT_EQ(result.mError, "");
    EXPECT_EQ(result.mExitCode, 4);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.getPath()), {}), 4);
}

TEST(CheckCommand, LimitsAreNamed) {
    const ToolResult result = runTool({"check", getDocument("huge_leader_count.kts"), getDocument("body_cut.kts")});
    EXPECT_THAT(result.mOut, HasSubstr("a limit was reached: the memory budget of "));
    EXPECT_THAT(result.mOut, HasSubstr("2 documents: 3 views"));
    EXPECT_EQ(result.mExitCode, 5);
}

TEST(CheckCommand, JsonIsOneLineForEachDocument) {
    const ToolResult result = runTool(ToolRun{
        .mArguments = {"check", "--json", "-", getDocument("header_cut.kts")},
        .mInput = R"([{"ver":"6.22","normal":0,"annotations":[{"type":"text"}]},{}])",
    });
    EXPECT_EQ(result.mOut.substr(0, result.mOut.find('\n')),
              R"({"source": "-", "kind": "variant", "streamError": false, )"
              R"("messages": ["invalid 'normal' field", "invalid version "], "problems": [], "views": 1, )"
              R"("refusedViews": 1, "annotations": 1, "children": 0})");
    EXPECT_THAT(result.mOut, HasSubstr(R"("refused": "the file ends inside its header)"));
    EXPECT_EQ(result.mExitCode, 4);
}

}  // namespace
}  // namespace ktannot::test
