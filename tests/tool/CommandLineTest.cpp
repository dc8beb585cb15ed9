#include "tests/tool/ToolRunner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ktannot::test {
namespace {

using testing::HasSubstr;
using Words = std::vector<std::string>;

TEST(CommandLine, ExitCodesOfDocuments) {
    const std::string limit = getDocument("huge_leader_count.kts");
    const std::string missing = getDocument("missing.json");
    const std::string noView = getDocument("no_annotations.json");
    const std::vector<std::pair<Words, int>> cases = {
        {{getSample("catalogue_v622.json")}, 0},
        {{getSample("parts_list_v627.json")}, 0},
        {{getSample("lang_ja_from_doc_v627.kts"), getSample("lang_ar.json")}, 0},
        {{getDocument("several_fields.json")}, 3},
        {{getDocument("link_to_nothing.kts")}, 3},
        {{getDocument("children_not_map.json")}, 3},
        {{noView}, 4},
        {{getDocument("trailing_comma.json")}, 4},
        {{getDocument("header_cut.kts")}, 4},
        {{limit}, 5},
        {{missing}, 6},
        {{"/proc/self/mem"}, 6},  // opens like any file; reading at its beginning fails
        {{noView, getDocument("several_fields.json")}, 4},
        {{limit, getDocument("header_cut.kts")}, 5},
        {{missing, limit, getSample("lang_ar.json")}, 6},
    };
    for (const char* command : {"check", "inspect"}) {
        for (const auto& [inputs, exitCode] : cases) {
            Words arguments{command};
            arguments.insert(arguments.end(), inputs.begin(), inputs.end());
            const ToolResult result = runTool(arguments);
            EXPECT_EQ(result.mExitCode, exitCode) << command << " " << inputs.front();
            EXPECT_TRUE(exitCode != 0 || result.mError.empty()) << result.mError;
        }
    }
    EXPECT_THAT(runTool({"check", "/proc/self/mem"}).mOut, HasSubstr("/proc/self/mem: cannot be read: "));
}

TEST(CommandLine, WrongUsageDoesNothingAndSaysWhy) {
    const std::vector<std::pair<Words, const char*>> cases = {
        {{}, "a command is missing"},
        {{"explode"}, "'explode' is no command"},
        {{"--explode"}, "'--explode' is no command"},
        {{"inspect"}, "INPUT is required"},
        {{"inspect", "--jsno", "x"}, "--jsno"},
        {{"inspect", "--color=blue", "x"}, "blue"},
        {{"check", "-", "-"}, "once only"},
        {{"version", "x"}, "x"},
        {{"inspect", "--\x1b", "x"}, "\\x1b"},
    };
    for (const auto& [arguments, message] : cases) {
        const ToolResult result = runTool(arguments);
        EXPECT_EQ(result.mExitCode, 2) << message;
        EXPECT_EQ(result.mOut, "") << message;
        EXPECT_THAT(result.mError, HasSubstr(message));
    }
}

TEST(CommandLine, HelpTeachesByExampleAndVersionNamesTheLibrary) {
    const char* version = "libktAnnotationLegacy 3.0.0.1226 #0f14611422dbde61 2025-12\n";
    const char* examples = "Examples:";
    const std::vector<std::pair<Words, const char*>> cases = {
        {{"--help"}, examples},          {{"inspect", "--help"}, examples},
        {{"check", "--help"}, examples}, {{"version", "--help"}, "version"},
        {{"version"}, version},          {{"--version"}, version},
    };
    for (const auto& [arguments, told] : cases) {
        const ToolResult result = runTool(arguments);
        EXPECT_EQ(result.mExitCode, 0) << arguments.front();
        EXPECT_EQ(result.mError, "");
        EXPECT_THAT(result.mOut, HasSubstr(told));
    }
    EXPECT_EQ(runTool({"--version"}).mOut, runTool({"version"}).mOut);
}

TEST(CommandLine, WordsOfCommandsCanBeInputs) {
    EXPECT_THAT(runTool({"inspect", "check"}).mError, HasSubstr("check: cannot be read"));
    EXPECT_THAT(runTool({"check", "--", "--json"}).mOut, HasSubstr("--json: cannot be read"));
}

TEST(CommandLine, OutputThatFailsIsAFailureOfTheEnvironment) {
    const std::string sample = getSample("parts_list_v627.json");
    const ToolResult full = runTool(ToolRun{.mArguments = {"inspect", "--json", sample}, .mOutputPath = "/dev/full"});
    EXPECT_EQ(full.mExitCode, 6);
    EXPECT_THAT(full.mError, HasSubstr("No space left"));
    const ToolResult left =
        runTool(ToolRun{.mArguments = {"inspect", "--json", sample, sample}, .mIsOutputClosedPipe = true});
    EXPECT_EQ(left.mExitCode, 6);
    EXPECT_EQ(left.mError, "");
}

}  // namespace
}  // namespace ktannot::test
