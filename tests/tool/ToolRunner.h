#pragma once

/// @file
/// Runs the tool as a process.

#include <string>
#include <utility>
#include <vector>

namespace ktannot::test {

/// What a run of the tool left behind.
struct ToolResult {
    int mExitCode = -1;  ///< -1 when a signal ended it
    std::string mOut;
    std::string mError;
};

/// How to run the tool; by default with empty standard input and both outputs captured.
struct ToolRun {
    std::vector<std::string> mArguments;
    std::string mInput;                                               ///< for standard input
    std::vector<std::pair<std::string, std::string>> mEnvironment{};  ///< set besides what is there
    std::string mOutputPath{};                                        ///< file or device instead of the capture
    bool mIsOutputClosedPipe = false;                                 ///< standard output is a pipe without reader
    bool mIsTerminal = false;                                         ///< standard output is a terminal
};

ToolResult runTool(const ToolRun& run);
ToolResult runTool(std::vector<std::string> arguments);

/// Path of a document kept for the tests, and of one of the samples.
std::string getDocument(const std::string& name);
std::string getSample(const std::string& name);

}  // namespace ktannot::test
