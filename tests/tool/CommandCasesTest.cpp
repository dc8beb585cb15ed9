// Runs of the tool that are told in text: what is there, what is run, what comes out.

#include "tests/tool/ToolRunner.h"

#include <gmock/gmock.h>

#include <map>

namespace ktannot::test {
namespace {

/// The lines of a case by what they begin with, e.g. "exit" and "4" of "exit: 4".
using Case = std::multimap<std::string, std::string>;

void replaceAll(std::string& text, const std::string& from, const std::string& to) {
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
        text.replace(at, from.size(), to);
    }
}

/// The values of a key, each with the places of this machine and a line end.
std::string getLines(const Case& lines, const std::string& key, const TemporaryFolder& folder) {
    std::string text;
    for (auto [line, end] = lines.equal_range(key); line != end; ++line) {
        text += line->second + "\n";
    }
    replaceAll(text, "$DIR", folder.getPath());
    replaceAll(text, "$DOCUMENTS", KT_SOURCE_DIR "/tests/data/documents");
    replaceAll(text, "$SAMPLES", KT_SAMPLES_DIR);
    replaceAll(text, "$VIEW",
               R"({"ver":"6.27","name":"good","metadata":{},"annotations":[{"type":"text","text":"M8"}]})");
    replaceAll(text, "$ESC", "\x1b");
    replaceAll(text, "(nothing)\n", "");
    replaceAll(text, "$BREAK", "\n");
    return text;
}

std::vector<std::string> split(const std::string& text, const char* separators) {
    std::vector<std::string> words;
    for (std::size_t begin = 0; (begin = text.find_first_not_of(separators, begin)) != std::string::npos;) {
        const std::size_t end = std::min(text.find_first_of(separators, begin), text.size());
        words.push_back(text.substr(begin, end - begin));
        begin = end;
    }
    replace(words.begin(), words.end(), std::string("''"), std::string());
    return words;
}

void runCase(const Case& lines) {
    for (auto [run, end] = lines.equal_range("run"); run != end; ++run) {
        SCOPED_TRACE(run->second);
        const TemporaryFolder folder;
        for (auto [file, lastFile] = lines.equal_range("file"); file != lastFile; ++file) {
            std::string name = getLines({*file}, "file", folder);
            name.pop_back();
            const std::size_t nameEnd = std::min(name.find(' '), name.size());
            const std::string content = name.substr(std::min(nameEnd + 1, name.size()));
            folder.write(name.substr(0, nameEnd), content);
        }
        ToolRun tool{split(getLines({*run}, "run", folder), " \n")};
        tool.mInput = getLines(lines, "input", folder);
        const ToolResult result = runTool(tool);
        const int exitCode = std::stoi(lines.find("exit")->second);
        EXPECT_EQ(result.mExitCode, exitCode);
        const bool isErrorTold = lines.contains("error") || lines.contains("error has");
        EXPECT_TRUE(exitCode != 0 || isErrorTold || result.mError.empty()) << result.mError;
        for (const auto& [key, output] : {std::pair("out", result.mOut), {"error", result.mError}}) {
            if (lines.contains(key)) {
                EXPECT_EQ(output, getLines(lines, key, folder));
            }
            for (const std::string& part : split(getLines(lines, key + std::string(" has"), folder), "\n")) {
                EXPECT_THAT(output, testing::HasSubstr(part));
            }
        }
        if (lines.contains("drawings")) {
            std::size_t count = 0;
            for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.getPath())) {
                count += entry.path().extension() == ".svg" ? 1U : 0U;
            }
            EXPECT_EQ(std::to_string(count), lines.find("drawings")->second);
        }
    }
}

TEST(CommandCases, RunAsTold) {
    std::istringstream file(readFile(KT_SOURCE_DIR "/tests/data/command_cases.txt") + "\n== end\n");
    std::string name;
    Case lines;
    int count = 0;
    for (std::string line; std::getline(file, line);) {
        const std::size_t colon = line.find(": ");
        if (line.starts_with("== ")) {
            if (!name.empty()) {
                SCOPED_TRACE(name);
                runCase(lines);
                ++count;
            }
            name = line.substr(3);
            lines.clear();
        } else if (!name.empty() && colon != std::string::npos) {
            lines.emplace(line.substr(0, colon), line.substr(colon + 2));
        }
    }
    EXPECT_GT(count, 50);
}

TEST(CommandLine, OutputThatFailsIsAFailureOfTheEnvironment) {
    const std::string sample = getSample("parts_list_v627.json");
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {"inspect", "--json", sample, sample}, {"migrate", "-o", "-", "--accept", "all", sample}}) {
        const ToolResult full = runTool(ToolRun{.mArguments = arguments, .mOutputPath = "/dev/full"});
        EXPECT_EQ(full.mExitCode, 6);
        EXPECT_THAT(full.mError, testing::HasSubstr("No space left"));
        const ToolResult left = runTool(ToolRun{.mArguments = arguments, .mIsOutputClosedPipe = true});
        EXPECT_EQ(left.mExitCode, 6);
        EXPECT_EQ(left.mError, "");
    }
}

}  // namespace
}  // namespace ktannot::test
