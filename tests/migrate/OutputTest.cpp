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
using testing::IsEmpty;
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

TEST(MigrateOutput, DrawingsOfTheSamplesAreSound) {
    const TemporaryFolder folder;
    for (const char* mode : {"text", "outlines"}) {
        const ToolResult result = migrate(folder, {KT_SAMPLES_DIR, "--accept", "all", "--force", "--text", mode});
        EXPECT_EQ(result.mExitCode, 4) << result.mError;  // the catalogues hold a view that is refused
        const auto tree = readOutput(folder);
        EXPECT_EQ(tree.size(), 82U);
        EXPECT_EQ(findFaults(tree), "");
        const auto hasText = [](const auto& entry) { return entry.second.find("<text") != std::string::npos; };
        EXPECT_EQ(std::count_if(tree.begin(), tree.end(), hasText), mode == std::string("text") ? 80 : 0);
    }
}

TEST(MigrateOutput, NamesFollowDocumentsAndViews) {
    const TemporaryFolder folder;
    folder.write("in/deep/er/c.json", makeView("c"));
    folder.write("in/b.json", "[" + makeView("../../etc/x") + "," + makeView("") + "," + makeView("a\\nb") + "," +
                                  makeView(".hidden") + "]");
    folder.write("in/.json", makeView(std::string(300, 'x')));
    folder.write("in/notes.txt", makeView("not searched for"));
    folder.write("a.txt", makeView("\xC3\xA9\xE2\x8C\x80"));
    const ToolResult result = migrate(folder, {folder.at("in"), folder.at("a.txt")});
    EXPECT_EQ(result.mExitCode, 0);
    EXPECT_THAT(getNames(readOutput(folder)),
                ElementsAre(".json/001-" + std::string(120, 'x') + ".svg", "a.txt/001-\xC3\xA9\xE2\x8C\x80.svg",
                            "b.json/001-_.._etc_x.svg", "b.json/002-view.svg", "b.json/003-a_b.svg",
                            "b.json/004-hidden.svg", "deep/er/c.json/001-c.svg"));
}

TEST(MigrateOutput, IsTheSameWhateverTheJobsAndInEveryRun) {
    const TemporaryFolder folder;
    for (const char* format : {"svg", "json"}) {
        std::map<std::string, std::string> first;
        for (const char* jobs : {"1", "4", "4"}) {
            migrate(folder, {KT_SAMPLES_DIR, "--accept", "all", "--force", "--jobs", jobs, "--format", format});
            auto tree = readOutput(folder);
            std::filesystem::remove_all(folder.at("out"));
            ASSERT_THAT(tree, Not(IsEmpty()));
            if (first.empty()) {
                first = std::move(tree);
            }
            EXPECT_EQ(tree.empty() || tree == first, true) << format << " with --jobs " << jobs;
        }
    }
}

TEST(MigrateOutput, LinesOnStandardOutputKeepTheOrderOfTheInputs) {
    const TemporaryFolder folder;
    std::vector<std::string> arguments{"migrate", "--format", "json", "-o", "-", "--jobs", "4"};
    std::vector<std::string> sources;
    for (int index = 60; index-- > 0;) {
        // Documents of very different size, and one that is refused now and then.
        const std::string content = index % 7 == 0 ? "{" : makeView("v", makeText());
        std::string views = content;
        for (int copy = 0; copy < (index % 5) * 40 && index % 7 != 0; ++copy) {
            views += "," + content;
        }
        sources.push_back(folder.write(std::to_string(index) + ".json", index % 7 == 0 ? content : "[" + views + "]"));
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

TEST(MigrateOutput, TwoInputsForOnePlaceAreRefusedAtOnce) {
    const TemporaryFolder folder;
    const std::string a = folder.write("x/a.json", makeView("a"));
    const std::string b = folder.write("y/a.json", makeView("b"));
    for (const std::vector<std::string>& inputs :
         std::vector<std::vector<std::string>>{{a, b}, {folder.at("x"), folder.at("y")}, {folder.at("x"), a}, {a, a}}) {
        const ToolResult result = migrate(folder, inputs);
        EXPECT_EQ(result.mExitCode, 2);
        EXPECT_THAT(result.mError, HasSubstr("would both be written to"));
        EXPECT_THAT(readOutput(folder), IsEmpty());
    }
    // On standard output nothing meets.
    EXPECT_EQ(runTool({"migrate", "-o", "-", a, b}).mExitCode, 0);
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

TEST(MigrateOutput, WhatIsSaidWhenAllIsWell) {
    const TemporaryFolder folder;
    const std::string document = folder.write("a.json", makeView("a"));
    const std::string out = folder.at("out");
    const std::string summary = "1 view of 1 document migrated to " + out + "\n";
    const std::map<std::string, std::string> cases = {
        {"--force", summary}, {"-q", ""}, {"-v", out + "/a.json/001-a.svg\n" + summary}};
    for (const auto& [option, expected] : cases) {
        std::filesystem::remove_all(out);
        const ToolResult result = migrate(folder, {document, option});
        EXPECT_EQ(result.mOut, expected) << option;
        EXPECT_EQ(result.mError, "") << option;
    }
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

}  // namespace
}  // namespace ktannot::test
