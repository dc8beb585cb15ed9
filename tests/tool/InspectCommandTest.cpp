#include "tests/tool/ToolRunner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <sstream>

namespace ktannot::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

ToolResult inspectText(const std::string& document, const std::string& option = "--color=auto") {
    return runTool(ToolRun{.mArguments = {"inspect", "-", option}, .mInput = document});
}

TEST(InspectCommand, BytesThatAreNoTextAreToldAndControlCharactersNeverReachTheTerminal) {
    const struct {
        const char* mOption;
        std::string mName;
        const char* mShown;
    } cases[] = {
        {"--color=auto", "fr\xffnt", R"('fr\xffnt')"},      {"--json", "fr\xffnt", R"({"bytes": "6672ff6e74"})"},
        {"--color=auto", "\x1b[2J\r", R"('\x1b[2J\x0d')"},  {"--json", "\x1b[2J\r", R"("\u001b[2J\r")"},
        {"--color=never", "\x1b[2J\r", R"('\x1b[2J\x0d')"},
    };
    for (const auto& [option, name, shown] : cases) {
        std::string document = readFile(getDocument("link_to_nothing.kts"));
        document.replace(document.find("front"), 5, name);  // the name of a view
        const ToolResult result = inspectText(document, option);
        EXPECT_THAT(result.mOut, HasSubstr(shown));
        EXPECT_THAT(result.mOut + result.mError, AllOf(Not(HasSubstr("\x1b")), Not(HasSubstr("\r"))));
    }
    EXPECT_THAT(inspectText(R"({"ver":"6\u001b\u202e"})").mOut, HasSubstr("invalid version 6\\x1b\\u202e"));
    // Names of files are foreign, too.
    EXPECT_THAT(runTool({"inspect", "\x1b[31mmissing"}).mError,
                AllOf(HasSubstr("\\x1b[31mmissing"), Not(HasSubstr("\x1b"))));
}

TEST(InspectCommand, TreesStayReadableToTheDeepestLevel) {
    const auto inspectNested = [](int levels) {
        std::string json;
        for (int level = 0; level < levels; ++level) {
            json = R"({"type":"text","children":[)" + json + "]}";
        }
        return inspectText(R"({"ver":"6.22","annotations":[)" + json + "]}");
    };
    const ToolResult whole = inspectNested(512);
    EXPECT_EQ(whole.mExitCode, 0);
    EXPECT_EQ(whole.mError, "");
    EXPECT_NE(whole.mOut.find("[level 513] "), std::string::npos);
    EXPECT_LT(whole.mOut.size(), 512U * 400);
    const ToolResult cut = inspectNested(513);
    EXPECT_EQ(cut.mExitCode, 5);
    EXPECT_THAT(cut.mError, HasSubstr("512 levels"));
}

TEST(InspectCommand, ColourIsForTerminalsUnlessAskedFor) {
    const std::string path = getSample("symbols_from_617_v615.kts");
    const struct {
        bool mIsTerminal;
        const char* mNoColor;
        const char* mOption;
        bool mIsColored;
    } cases[] = {
        {false, "", "--color=auto", false},  {true, "", "--color=auto", true},   {true, "1", "--color=auto", false},
        {true, "1", "--color=always", true}, {true, "", "--color=never", false}, {false, "", "--color=always", true},
    };
    for (const auto& [isTerminal, noColor, option, isColored] : cases) {
        const ToolResult result = runTool(ToolRun{
            .mArguments = {"inspect", option, path},
            .mEnvironment = {{"NO_COLOR", noColor}, {"TERM", "xterm"}},
            .mIsTerminal = isTerminal,
        });
        EXPECT_EQ(result.mOut.find("\x1b[") != std::string::npos, isColored) << isTerminal << noColor << option;
        EXPECT_EQ(result.mExitCode, 0);
    }
}

TEST(InspectCommand, EachInputIsOneLineFoldersInByteOrder) {
    const TemporaryFolder elsewhere;
    const TemporaryFolder folder;
    const std::string file = folder.write("z.txt", "{}");
    elsewhere.write("secret.kts", "");
    for (const char* name : {"b.kts", "B.kts", "a/z.json", "a/b/c.kts", "settings.json", "notes.txt", "kts", "x.KTS"}) {
        folder.write(std::string("in/") + name, "{}");
    }
    folder.write("in/a.json", R"({"ver":"6.22","annotations":[]})");
    folder.write("in/ä.json", "");
    // Links are not followed, nor pipes opened.
    std::filesystem::create_directory_symlink(elsewhere.getPath(), folder.at("in/linked"));
    std::filesystem::create_symlink(elsewhere.at("secret.kts"), folder.at("in/link.kts"));
    std::filesystem::create_directory_symlink(folder.getPath(), folder.at("in/loop"));
    ASSERT_EQ(mkfifo(folder.at("in/pipe.kts").c_str(), 0600), 0);

    const ToolResult result = runTool({"inspect", "--json", file, folder.at("missing"), "-", folder.at("in/"), file});
    std::istringstream lines(result.mOut);
    std::vector<std::string> sources;
    for (std::string line; std::getline(lines, line);) {
        const std::string path = line.substr(12, line.find('"', 12) - 12);
        sources.push_back(path.starts_with(folder.getPath()) ? path.substr(folder.getPath().size()) : path);
    }
    EXPECT_THAT(sources, testing::ElementsAre("/z.txt", "/missing", "-", "/in/B.kts", "/in/a.json", "/in/a/b/c.kts",
                                              "/in/b.kts", "/in/ä.json", "/z.txt"));
    EXPECT_THAT(result.mOut, HasSubstr(R"("refused": "cannot be read: No such file or directory"})"));
    EXPECT_EQ(result.mExitCode, 6);
}

}  // namespace
}  // namespace ktannot::test
