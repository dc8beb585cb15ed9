#include "tests/migrate/DrawingCheck.h"
#include "tests/migrate/SampleText.h"
#include "tests/tool/TemporaryFolder.h"
#include "tests/tool/ToolRunner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <sstream>

namespace ktannot::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pair;

std::vector<std::string> getNames(const std::map<std::string, std::string>& tree) {
    std::vector<std::string> names;
    for (const auto& [name, content] : tree) {
        names.push_back(name);
    }
    return names;
}

ToolResult migrate(const TemporaryFolder& folder, std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"migrate", "-o", folder.at("out")});
    return runTool(arguments);
}

std::map<std::string, std::string> readOutput(const TemporaryFolder& folder) { return readTree(folder.at("out")); }

TEST(MigrateOutput, OfTheSamplesIsSoundAndTheSameWhateverTheJobs) {
    const struct {
        const char* mFormat;
        const char* mText;
        std::size_t mFiles;
        std::ptrdiff_t mFilesWithText;
    } cases[] = {{"svg", "text", 82, 80}, {"svg", "outlines", 82, 0}, {"json", "text", 12, 0}};
    const TemporaryFolder folder;
    for (const auto& [format, text, files, filesWithText] : cases) {
        SCOPED_TRACE(std::string(format) + " with " + text);
        std::map<std::string, std::string> first;
        for (const char* jobs : {"1", "4"}) {
            const ToolResult result = migrate(
                folder, {KT_SAMPLES_DIR, "--accept", "all", "--format", format, "--text", text, "--jobs", jobs});
            EXPECT_EQ(result.mExitCode, 4) << result.mError;  // the catalogues hold a view that is refused
            const auto tree = readOutput(folder);
            std::filesystem::remove_all(folder.at("out"));
            first = first.empty() ? tree : first;
            EXPECT_TRUE(tree == first) << "--jobs " << jobs;
        }
        EXPECT_EQ(first.size(), files);
        EXPECT_TRUE(findFaults(first).empty() || format == std::string("json"));
        const auto hasText = [](const auto& entry) { return entry.second.find("<text") != std::string::npos; };
        EXPECT_EQ(std::count_if(first.begin(), first.end(), hasText), filesWithText);
    }
}

TEST(MigrateOutput, LinesOnStandardOutputKeepTheOrderOfTheInputs) {
    const TemporaryFolder folder;
    std::vector<std::string> arguments{"migrate", "--format", "json", "-o", "-", "--jobs", "4"};
    std::vector<std::string> sources;
    for (int index = 60; index-- > 0;) {
        // Documents of very different size, and one that is refused now and then.
        std::string views = makeView("v");
        for (int copy = 0; copy < (index % 5) * 40; ++copy) {
            views += "," + makeView("v");
        }
        sources.push_back(folder.write(std::to_string(index) + ".json", index % 7 == 0 ? "{" : "[" + views + "]"));
        arguments.push_back(sources.back());
    }
    std::istringstream lines(runTool(arguments).mOut);
    std::vector<std::string> printed;
    for (std::string line; std::getline(lines, line);) {
        const auto dump = nlohmann::json::parse(line);
        printed.push_back(dump.at("source"));
        EXPECT_NE(dump.contains("refused"), dump.contains("views")) << line.substr(0, 200);
    }
    EXPECT_EQ(printed, sources);
}

TEST(MigrateOutput, DrawingsThatExist) {
    const TemporaryFolder folder;
    const std::string two = folder.write("in/two.json", "[" + makeView("a") + "," + makeView("b") + "]");
    const std::string other = folder.write("in/other.json", makeView("c"));
    const auto reset = [&folder] {
        std::filesystem::remove_all(folder.at("out"));
        folder.write("out/two.json/001-a.svg", "mine");
    };
    const struct {
        const char* mOption;
        int mExitCode;
        std::size_t mFileCount;
        bool mIsKept;
    } cases[] = {{"-q", 6, 2, true}, {"--skip-existing", 0, 3, true}, {"--force", 0, 3, false}};
    for (const auto& [option, exitCode, fileCount, isKept] : cases) {
        SCOPED_TRACE(option);
        reset();
        const ToolResult result = migrate(folder, {folder.at("in"), option});
        EXPECT_EQ(result.mExitCode, exitCode);
        auto tree = readOutput(folder);
        EXPECT_EQ(tree.size(), fileCount);
        EXPECT_EQ(tree["two.json/001-a.svg"] == "mine", isKept);
        tree.erase("two.json/001-a.svg");
        EXPECT_EQ(findFaults(tree), "");
        if (exitCode == 6) {
            EXPECT_THAT(result.mError, AllOf(HasSubstr(two), HasSubstr("--force"), HasSubstr("--skip-existing")));
        } else {
            EXPECT_EQ(result.mError, "");
        }
    }
}

TEST(MigrateOutput, ALinkInTheWayIsNotFollowed) {
    const TemporaryFolder folder;
    const std::string document = folder.write("a.json", makeView("a"));
    const std::string victim = folder.write("victim", "mine");
    std::filesystem::create_directories(folder.at("out/a.json"));
    std::filesystem::create_symlink(victim, folder.at("out/a.json/001-a.svg"));
    EXPECT_EQ(migrate(folder, {document}).mExitCode, 6);
    EXPECT_EQ(migrate(folder, {document, "--force"}).mExitCode, 0);
    EXPECT_THAT(readTree(folder.at("out")), ElementsAre(Pair("a.json/001-a.svg", HasSubstr("<svg"))));
    EXPECT_EQ(readTree(folder.getPath())["victim"], "mine");
}

TEST(MigrateOutput, StandardInputAndOutput) {
    const TemporaryFolder folder;
    ToolRun run;
    run.mInput = "[" + makeView("a") + "," + makeView("b") + "]";
    run.mArguments = {"migrate", "-", "-o", "-"};
    const ToolResult drawings = runTool(run);
    EXPECT_EQ(drawings.mExitCode, 0);
    EXPECT_EQ(drawings.mError, "");
    const std::size_t second = drawings.mOut.find("<?xml", 1);
    ASSERT_NE(second, std::string::npos);
    EXPECT_EQ(findFaults(drawings.mOut.substr(0, second)), "");
    EXPECT_EQ(findFaults(drawings.mOut.substr(second)), "");

    run.mArguments = {"migrate", "-", "-o", "-", "--format", "json"};
    const auto dump = nlohmann::json::parse(runTool(run).mOut);
    EXPECT_EQ(dump.at("source"), "-");
    EXPECT_EQ(dump.at("views").size(), 2U);
    EXPECT_EQ(dump.at("log").size(), 0U);

    run.mArguments = {"migrate", "-", "-o", folder.at("out/")};
    EXPECT_EQ(runTool(run).mOut, "2 views of 1 document migrated to " + folder.at("out/") + "\n");
    EXPECT_THAT(getNames(readOutput(folder)), ElementsAre("stdin/001-a.svg", "stdin/002-b.svg"));
}

TEST(MigrateOutput, GoesToMigratedByDefault) {
    const TemporaryFolder folder;
    folder.write("a.json", makeView("a"));
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder.getPath());
    const ToolResult result = runTool({"migrate", "a.json"});
    std::filesystem::current_path(before);
    EXPECT_EQ(result.mExitCode, 0) << result.mError;
    EXPECT_THAT(getNames(readTree(folder.at("migrated"))), ElementsAre("a.json/001-a.svg"));
}

TEST(MigrateOutput, HeadSizeAndTextModeReachTheDrawing) {
    const TemporaryFolder folder;
    const std::string document =
        folder.write("a.json", makeView("a", makeText(R"(,"leaders":[{"pos":[50,50,0],"head":"arrow"}])")));
    const auto draw = [&document](const std::string& size) {
        return runTool({"migrate", "-o", "-", document, "--head-size", size}).mOut;
    };
    EXPECT_EQ(draw("3"), runTool({"migrate", "-o", "-", document}).mOut);
    EXPECT_NE(draw("3"), draw("6"));
    EXPECT_EQ(findFaults(draw("1e-3")), "");
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

TEST(MigrateOutput, ControlCharactersOfADocumentStayOffTheTerminal) {
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
    EXPECT_EQ(findFaults(readOutput(folder)), "");
}

TEST(MigrateOutput, HostileTextsStillMakeSoundDrawings) {
    const TemporaryFolder folder;
    const std::string text = R"({"type":"text","name":"]]><script>&\u0000","text":"<!ENTITY a>\u0001\ufffe"})";
    const std::string document =
        folder.write("a.json", "[" + makeView("deep", makeNestedText(200)) + "," + makeView("\\ufffe<b>", text) + "]");
    migrate(folder, {document});
    EXPECT_EQ(readOutput(folder).size(), 2U);
    EXPECT_EQ(findFaults(readOutput(folder)), "");
}

}  // namespace
}  // namespace ktannot::test
