#pragma once

/// @file
/// The tool as a process.

#include "tests/tool/TemporaryFolder.h"

#include <sys/types.h>

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
    std::string mInput{};                                             ///< for standard input
    std::vector<std::pair<std::string, std::string>> mEnvironment{};  ///< set besides what is there
    std::string mOutputPath{};                                        ///< file or device instead of the capture
    bool mIsOutputClosedPipe = false;                                 ///< standard output is a pipe without reader
    bool mIsTerminal = false;                                         ///< standard output is a terminal
};

/// A run of the tool that signals can be sent to. What still runs at the end is killed.
class RunningTool {
public:
    explicit RunningTool(ToolRun run);
    explicit RunningTool(std::vector<std::string> arguments) : RunningTool(ToolRun{std::move(arguments)}) {}
    RunningTool(const RunningTool&) = delete;
    RunningTool& operator=(const RunningTool&) = delete;
    ~RunningTool();

    void send(int signal) const;
    /// Waits for the end.
    ToolResult finish();

private:
    int openOutput();

    const TemporaryFolder mFolder;
    const ToolRun mRun;
    int mTerminal = -1;  ///< our side of the terminal
    pid_t mProcess = -1;
};

inline ToolResult runTool(const ToolRun& run) { return RunningTool(run).finish(); }
inline ToolResult runTool(std::vector<std::string> arguments) { return runTool(ToolRun{std::move(arguments)}); }

/// Path of a document kept for the tests, and of one of the samples.
inline std::string getDocument(const std::string& name) { return KT_SOURCE_DIR "/tests/data/documents/" + name; }
inline std::string getSample(const std::string& name) { return KT_SAMPLES_DIR "/" + name; }

}  // namespace ktannot::test
