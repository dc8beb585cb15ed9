#include "tests/migrate/DrawingCheck.h"
#include "tests/migrate/SampleText.h"
#include "tests/tool/TemporaryFolder.h"
#include "tests/tool/ToolRunner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ktannot::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

ToolResult migrate(const TemporaryFolder& folder, std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"migrate", "-o", folder.at("out")});
    return runTool(arguments);
}

std::size_t countFiles(const TemporaryFolder& folder) { return readTree(folder.at("out")).size(); }

TEST(MigrateRefusal, MetadataIsDroppedOnlyWhenAccepted) {
    const struct {
        const char* mWord;
        std::string mView;
    } kinds[] = {
        {"view-metadata", makeView("v", makeText(), R"({"SavedView":"A"})")},
        {"known-metadata", makeView("v", makeText(R"(,"metadata":{"NOA":1})"))},
        {"other-metadata", makeView("v", makeText(R"(,"metadata":{"Vendor":1})"))},
    };
    const std::vector<std::string> lists = {
        "", "view-metadata", "known-metadata", "other-metadata", "known-metadata,view-metadata", "all"};
    const TemporaryFolder folder;
    for (const auto& [word, view] : kinds) {
        const std::string document = folder.write("a.json", "[" + view + "," + makeView("plain") + "]");
        for (const std::string& list : lists) {
            SCOPED_TRACE(std::string(word) + " with --accept " + list);
            const bool isAccepted = list == "all" || list.find(word) != std::string::npos;
            const ToolResult result = migrate(folder, {document, "--force", "--accept", list});
            EXPECT_EQ(result.mExitCode, isAccepted ? 0 : 4);
            EXPECT_EQ(countFiles(folder), isAccepted ? 2U : 1U);
            EXPECT_EQ(result.mError.find("view 'v': Found ") == std::string::npos, isAccepted) << result.mError;
            EXPECT_EQ(result.mError.find("(--accept " + std::string(word) + " ") == std::string::npos, isAccepted);
            std::filesystem::remove_all(folder.at("out"));
        }
    }
}

TEST(MigrateRefusal, WrongUsageDoesNothing) {
    const TemporaryFolder folder;
    const std::string document = folder.write("a.json", makeView("a"));
    const std::vector<std::vector<std::string>> cases = {
        {"--accept", "everything"},
        {"--accept", "view-metadata,"},
        {"--accept", "all;view-metadata"},
        {"--head-size", "0"},
        {"--head-size", "-1"},
        {"--head-size", "nan"},
        {"--head-size", "inf"},
        {"--head-size", "1e39"},
        {"--head-size", "1e-50"},
        {"--head-size", "large"},
        {"--jobs", "0"},
        {"--jobs", "-2"},
        {"--format", "pdf"},
        {"--text", "curves"},
        {"--memory-limit", "0"},
        {"--memory-limit", "many"},
        {"--memory-limit", "5T"},
        {"--memory-limit", "99999999999G"},
        {"--force", "--skip-existing"},
        {"-q", "-v"},
        {"-o", ""},
    };
    for (const std::vector<std::string>& options : cases) {
        std::vector<std::string> arguments = options;
        arguments.push_back(document);
        const ToolResult result = migrate(folder, arguments);
        EXPECT_EQ(result.mExitCode, 2) << options[0] << ' ' << options[1];
        EXPECT_THAT(result.mError, Not(IsEmpty()));
        EXPECT_EQ(countFiles(folder), 0U);
    }
}

TEST(MigrateRefusal, OneFailureDoesNotStopTheOthers) {
    const std::string good = makeView("good");
    const struct {
        const char* mWhat;
        std::string mBad;
        int mExitCode;
        std::size_t mDrawings;  ///< of the bad document
        const char* mMessage;
    } cases[] = {
        {"no JSON", "{\"ver\":", 4, 0, "not valid JSON at line 1"},
        {"nothing", "", 4, 0, "the file is empty"},
        {"no version", "{}", 4, 0, "view 1: invalid version "},
        {"a single value", "[1]", 4, 0, "view 1: invalid version "},
        {"a bad view", "[" + good + R"(,{"ver":"1.0"},)" + good + "]", 4, 2, "view 2: invalid version 1.0"},
        {"no picture", "[" + makeView("p", R"({"type":"raster","rastername":"x","sizeem":[1,1]})") + "," + good + "]",
         4, 1, "view 'p': "},
        {"a field", R"({"ver":"6.22","name":"m","axis":0,"annotations":[]})", 3, 1, "invalid 'axis' field"},
        {"views, none", "[]", 0, 0, ""},
    };
    for (const auto& [what, bad, exitCode, drawings, message] : cases) {
        SCOPED_TRACE(what);
        const TemporaryFolder folder;
        const ToolResult result = migrate(folder, {folder.write("a.json", good), folder.write("bad.json", bad),
                                                   folder.write("z.json", good), "--jobs", "1"});
        EXPECT_EQ(result.mExitCode, exitCode);
        EXPECT_EQ(countFiles(folder), 2 + drawings);
        EXPECT_THAT(result.mError, HasSubstr(message));
        EXPECT_EQ(result.mError.empty(), exitCode == 0) << result.mError;
    }
}

TEST(MigrateRefusal, EnvironmentFailuresHaveACodeOfTheirOwn) {
    const TemporaryFolder folder;
    const std::string document = folder.write("a.json", makeView("a"));
    const std::string file = folder.write("file", "");
    const struct {
        std::vector<std::string> mArguments;
        std::string mNamed;
        std::size_t mDrawings;
    } cases[] = {
        {{"-o", folder.at("out"), folder.at("missing.kts"), document}, folder.at("missing.kts"), 1},
        {{"-o", file, document}, file + "/a.json", 0},
        {{"-o", file, "--format", "json", document}, document, 0},
        {{"-o", "/proc/nowhere", document}, "/proc/nowhere", 0},
        {{"-o", folder.at("out"), document, "--report", file + "/report"}, file + "/report", 0},
        {{"-o", folder.at("out"), document, "--log-file", file + "/log"}, file + "/log", 0},
    };
    for (const auto& [arguments, named, drawings] : cases) {
        std::vector<std::string> words{"migrate"};
        words.insert(words.end(), arguments.begin(), arguments.end());
        const ToolResult result = runTool(words);
        EXPECT_EQ(result.mExitCode, 6) << named;
        EXPECT_THAT(result.mError, HasSubstr(named));
        EXPECT_EQ(countFiles(folder), drawings) << named;
        std::filesystem::remove_all(folder.at("out"));
    }
    ToolRun run;
    run.mArguments = {"migrate", "-o", "-", document};
    run.mOutputPath = "/dev/full";
    EXPECT_EQ(runTool(run).mExitCode, 6);
}

/// A text with that many levels of children.
std::string makeNestedText(int levels) {
    std::string text = makeText();
    for (int level = 0; level < levels; ++level) {
        text.insert(1, R"("anchorloc":"rt",)");
        text = makeText(R"(,"children":[)" + text + "]");
    }
    return text;
}

TEST(MigrateRefusal, LimitsAreNamed) {
    const TemporaryFolder folder;
    const std::string variant = folder.write("a.json", makeView("a"));
    const std::string deep = folder.write("deep.json", makeView("deep", makeNestedText(600)));
    const std::string stream = getSample("ctc_01_from_617_v613.kts");
    const std::string hungry = getDocument("huge_leader_count.kts");
    const struct {
        const char* mLimit;
        std::string mDocument;
        const char* mNamed;  ///< empty: no limit is reached
    } cases[] = {
        {"1000", variant, "the memory limit of 1000 bytes"},     {"1M", variant, ""},
        {"1K", stream, "the memory budget of 1024 bytes"},       {"2G", stream, ""},
        {"2G", hungry, "the memory budget of 2147483648 bytes"}, {"2G", deep, "512 levels of nested annotations"},
    };
    for (const auto& [limit, document, named] : cases) {
        const ToolResult result = migrate(folder, {document, "--force", "--memory-limit", limit});
        EXPECT_EQ(result.mExitCode, *named == '\0' ? 0 : 5) << document << " with " << limit;
        EXPECT_THAT(result.mError, HasSubstr(named));
        for (const char* command : {"check", "inspect"}) {
            EXPECT_EQ(runTool({command, document, "--memory-limit", limit}).mExitCode, result.mExitCode);
        }
    }
}

TEST(MigrateRefusal, ControlCharactersOfADocumentStayOffTheTerminal) {
    const TemporaryFolder folder;
    const std::string hostile = "\\u001b]0;owned\\u0007\\u009b2J\\r\\n\\u202e";
    const std::string document =
        folder.write("a\x1b[31m.json", "[" + makeView(hostile, makeText(), R"({"k":1})") + "," +
                                           makeView(hostile, makeText(R"(,"metadata":{")" + hostile + R"(":1})")) +
                                           R"(,{"ver":")" + hostile + R"("}])");
    for (const char* verbosity : {"-v", "-vv"}) {
        const std::string log = folder.at(std::string("log") + verbosity);
        const ToolResult result =
            migrate(folder, {document, verbosity, "--force", "--accept", "view-metadata", "--log-file", log});
        EXPECT_EQ(result.mExitCode, 4);
        const std::string told =
            result.mError + result.mOut + readTree(folder.getPath())[std::string("log") + verbosity];
        EXPECT_THAT(told, HasSubstr("owned"));
        for (const char* raw : {"\x1b", "\x07", "\r", "\xC2\x9B", "\xE2\x80\xAE"}) {
            EXPECT_EQ(told.find(raw), std::string::npos) << told;
        }
    }
    EXPECT_EQ(findFaults(readTree(folder.at("out"))), "");
}

TEST(MigrateRefusal, HostileTextsStillMakeSoundDrawings) {
    const TemporaryFolder folder;
    const std::string text = R"({"type":"text","name":"]]><script>&\u0000","text":"<!ENTITY a>\u0001\ufffe"})";
    const std::string document =
        folder.write("a.json", "[" + makeView("deep", makeNestedText(200)) + "," + makeView("\\ufffe<b>", text) + "]");
    migrate(folder, {document});
    EXPECT_EQ(countFiles(folder), 2U);
    EXPECT_EQ(findFaults(readTree(folder.at("out"))), "");
}

}  // namespace
}  // namespace ktannot::test
