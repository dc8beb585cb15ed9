#include "tests/tool/ToolRunner.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>

namespace ktannot::test {

namespace {

/// What the other side of a terminal shows until it is hung up.
std::string readTerminal(int descriptor) {
    std::string text;
    std::array<char, 4096> piece{};
    for (ssize_t count = 0; (count = read(descriptor, piece.data(), piece.size())) > 0;) {
        text.append(piece.data(), static_cast<std::size_t>(count));
    }
    return text;
}

[[noreturn]] void runChild(const ToolRun& run) {
    for (const auto& [name, value] : run.mEnvironment) {
        setenv(name.c_str(), value.c_str(), 1);
    }
    std::vector<char*> arguments{const_cast<char*>(KT_TOOL)};
    for (const std::string& argument : run.mArguments) {
        arguments.push_back(const_cast<char*>(argument.c_str()));
    }
    arguments.push_back(nullptr);
    execv(KT_TOOL, arguments.data());
    _exit(127);
}

}  // namespace

RunningTool::RunningTool(ToolRun run) : mRun(std::move(run)) {
    const int in = open(mFolder.write("in", mRun.mInput).c_str(), O_RDONLY | O_CLOEXEC);
    const int out = openOutput();
    const int error = open(mFolder.at("error").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    mProcess = fork();
    if (mProcess == 0) {
        dup2(in, STDIN_FILENO);
        dup2(out, STDOUT_FILENO);
        dup2(error, STDERR_FILENO);
        runChild(mRun);
    }
    for (const int descriptor : {in, out, error}) {
        close(descriptor);
    }
}

RunningTool::~RunningTool() {
    if (mProcess > 0) {
        kill(mProcess, SIGKILL);
        waitpid(mProcess, nullptr, 0);
    }
    if (mTerminal >= 0) {
        close(mTerminal);
    }
}

int RunningTool::openOutput() {
    std::array<int, 2> ends{-1, -1};
    if (mRun.mIsTerminal) {
        EXPECT_EQ(openpty(&mTerminal, &ends[1], nullptr, nullptr, nullptr), 0);
    } else if (mRun.mIsOutputClosedPipe) {
        EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
        close(ends[0]);
    } else {
        const std::string path = mRun.mOutputPath.empty() ? mFolder.at("out") : mRun.mOutputPath;
        ends[1] = open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    }
    return ends[1];
}

void RunningTool::send(int signal) const { kill(mProcess, signal); }

ToolResult RunningTool::finish() {
    const std::string shown = readTerminal(mTerminal);
    int status = 0;
    waitpid(mProcess, &status, 0);
    mProcess = -1;
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, shown + readFile(mFolder.at("out")),
            readFile(mFolder.at("error"))};
}

}  // namespace ktannot::test
