#pragma once

/// @file
/// The tool while it works.

#include "tests/tool/TemporaryFolder.h"
#include "tests/tool/ToolRunner.h"

#include <sys/types.h>

#include <string>
#include <vector>

namespace ktannot::test {

/// A run of the tool that signals can be sent to.
class RunningTool {
public:
    explicit RunningTool(std::vector<std::string> arguments);
    RunningTool(const RunningTool&) = delete;
    RunningTool& operator=(const RunningTool&) = delete;
    /// Kills what still runs.
    ~RunningTool();

    void send(int signal) const;
    /// Waits for the end.
    ToolResult finish();

private:
    TemporaryFolder mFolder;
    pid_t mProcess = -1;
};

}  // namespace ktannot::test
