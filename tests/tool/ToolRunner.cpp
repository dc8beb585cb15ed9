#include "tests/tool/ToolRunner.h"

#include "tests/tool/TemporaryFolder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <sstream>

namespace ktannot::test {

namespace {

std::string readFile(const std::string& path) {
    std::ostringstream content;
    content << std::ifstream(path, std::ios::binary).rdbuf();
    return content.str();
}

/// What the other side of a terminal shows until it is hung up.
std::string readTerminal(int descriptor) {
    std::string text;
    std::array<char, 4096> piece{};
    for (ssize_t count = 0; (count = read(descriptor, piece.data(), piece.size())) > 0;) {
        text.append(piece.data(), static_cast<std::size_t>(count));
    }
    return text;
}

[[noreturn]] void runChild(const ToolRun& run, int in, int out, int error) {
    dup2(in, STDIN_FILENO);
    dup2(out, STDOUT_FILENO);
    dup2(error, STDERR_FILENO);
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

ToolResult runTool(const ToolRun& run) {
    const TemporaryFolder folder;
    const std::string outputPath = run.mOutputPath.empty() ? folder.at("out") : run.mOutputPath;
    const int in = open(folder.write("in", run.mInput).c_str(), O_RDONLY | O_CLOEXEC);
    const int error = open(folder.at("error").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    int terminal = -1;
    int out = -1;
    if (run.mIsTerminal) {
        EXPECT_EQ(openpty(&terminal, &out, nullptr, nullptr, nullptr), 0);
    } else if (run.mIsOutputClosedPipe) {
        std::array<int, 2> pipe{};
        EXPECT_EQ(pipe2(pipe.data(), O_CLOEXEC), 0);
        close(pipe[0]);
        out = pipe[1];
    } else {
        out = open(outputPath.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    }
    const pid_t child = fork();
    if (child == 0) {
        runChild(run, in, out, error);
    }
    for (const int descriptor : {in, out, error}) {
        close(descriptor);
    }
    ToolResult result;
    if (run.mIsTerminal) {
        result.mOut = readTerminal(terminal);
        close(terminal);
    }
    int status = 0;
    waitpid(child, &status, 0);
    result.mExitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.mError = readFile(folder.at("error"));
    if (!run.mIsTerminal && run.mOutputPath.empty()) {
        result.mOut = readFile(outputPath);
    }
    return result;
}

ToolResult runTool(std::vector<std::string> arguments) {
    ToolRun run;
    run.mArguments = std::move(arguments);
    return runTool(run);
}

std::string getDocument(const std::string& name) { return KT_SOURCE_DIR "/tests/data/documents/" + name; }

std::string getSample(const std::string& name) { return KT_SAMPLES_DIR "/" + name; }

}  // namespace ktannot::test
