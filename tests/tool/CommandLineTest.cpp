#include "tests/tool/TemporaryFolder.h"
#include "tests/tool/ToolRunner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace ktannot::test {
namespace {

using testing::HasSubstr;

TEST(CommandLine, ExitCodesOfDocuments) {
    const struct {
        std::vector<std::string> mInputs;
        int mExitCode;
    } cases[] = {
        {{getSample("catalogue_v622.json")}, 0},
        {{getSample("lang_ja_from_doc_v627.kts"), getSample("lang_ar.json")}, 0},
        {{getDocument("several_fields.json")}, 3},
        {{getDocument("link_to_nothing.kts")}, 3},
        {{getDocument("children_not_map.json")}, 3},
        {{getDocument("no_annotations.json")}, 4},
        {{getDocument("trailing_comma.json")}, 4},
        {{getDocument("header_cut.kts")}, 4},
        {{getDocument("huge_leader_count.kts")}, 5},
        {{getDocument("missing.json")}, 6},
        {{getDocument("no_annotations.json"), getDocument("several_fields.json")}, 4},
        {{getDocument("huge_leader_count.kts"), getDocument("header_cut.kts")}, 5},
        {{getDocument("missing.json"), getDocument("huge_leader_count.kts"), getSample("lang_ar.json")}, 6},
    };
    for (const char* command : {"check", "inspect"}) {
        for (const auto& test : cases) {
            std::vector<std::string> arguments{command};
            arguments.insert(arguments.end(), test.mInputs.begin(), test.mInputs.end());
            EXPECT_EQ(runTool(arguments).mExitCode, test.mExitCode) << command << " " << test.mInputs.front();
        }
    }
}

TEST(CommandLine, WrongUsageDoesNothingAndSaysWhy) {
    const struct {
        std::vector<std::string> mArguments;
        const char* mMessage;
    } cases[] = {
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
    for (const auto& test : cases) {
        const ToolResult result = runTool(test.mArguments);
        EXPECT_EQ(result.mExitCode, 2) << test.mMessage;
        EXPECT_EQ(result.mOut, "") << test.mMessage;
        EXPECT_THAT(result.mError, HasSubstr(test.mMessage));
    }
}

TEST(CommandLine, HelpTeachesByExample) {
    for (const std::string command : {"", "inspect", "check", "version"}) {
        const ToolResult result =
            runTool(command.empty() ? std::vector<std::string>{"--help"} : std::vector<std::string>{command, "--help"});
        EXPECT_EQ(result.mExitCode, 0);
        EXPECT_EQ(result.mError, "");
        EXPECT_THAT(result.mOut, HasSubstr(command == "version" ? "version" : "Examples:"));
    }
}

TEST(CommandLine, VersionNamesTheLibrary) {
    const ToolResult result = runTool({"version"});
    EXPECT_THAT(result.mOut, HasSubstr("libktAnnotationLegacy 3.0.0.1226 #0f14611422dbde61 2025-12\n"));
    EXPECT_EQ(runTool({"--version"}).mOut, result.mOut);
}

TEST(CommandLine, WordsOfCommandsCanBeInputs) {
    EXPECT_THAT(runTool({"inspect", "check"}).mError, HasSubstr("check: cannot be read"));
    EXPECT_THAT(runTool({"check", "--", "--json"}).mOut, HasSubstr("--json: cannot be read"));
}

TEST(CommandLine, OutputThatFailsIsAFailureOfTheEnvironment) {
    ToolRun full;
    full.mArguments = {"inspect", "--json", getSample("lang_ar.json")};
    full.mOutputPath = "/dev/full";
    EXPECT_EQ(runTool(full).mExitCode, 6);
    EXPECT_THAT(runTool(full).mError, HasSubstr("No space left"));
    ToolRun left;
    left.mArguments = {"inspect", "--json", getSample("parts_list_v627.json"), getSample("parts_list_v627.json")};
    left.mIsOutputClosedPipe = true;
    const ToolResult result = runTool(left);
    EXPECT_EQ(result.mExitCode, 6);
    EXPECT_EQ(result.mError, "");
}

TEST(CommandLine, FilesThatFailWhileReadAreAFailureOfTheEnvironment) {
    // It opens like any file; reading at its beginning fails.
    const ToolResult result = runTool({"check", "/proc/self/mem"});
    EXPECT_EQ(result.mExitCode, 6);
    EXPECT_THAT(result.mOut, HasSubstr("/proc/self/mem: cannot be read: "));
}

}  // namespace
}  // namespace ktannot::test
