#include "tests/migrate/RunningTool.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <sstream>

namespace ktannot::test {

namespace {

std::string readFile(const std::string& path) {
    std::ostringstream content;
    content << std::ifstream(path, std::ios::binary).rdbuf();
    return content.str();
}

}  // namespace

RunningTool::RunningTool(std::vector<std::string> arguments) {
    std::string tool = KT_TOOL;
    std::vector<char*> words{tool.data()};
    for (std::string& argument : arguments) {
        words.push_back(argument.data());
    }
    words.push_back(nullptr);
    const int out = open(mFolder.at("out").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    const int error = open(mFolder.at("error").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    mProcess = fork();
    if (mProcess == 0) {
        dup2(out, STDOUT_FILENO);
        dup2(error, STDERR_FILENO);
        execv(words[0], words.data());
        _exit(127);
    }
    close(out);
    close(error);
}

RunningTool::~RunningTool() {
    if (mProcess > 0) {
        kill(mProcess, SIGKILL);
        waitpid(mProcess, nullptr, 0);
    }
}

void RunningTool::send(int signal) const { kill(mProcess, signal); }

ToolResult RunningTool::finish() {
    int status = 0;
    waitpid(mProcess, &status, 0);
    mProcess = -1;
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, readFile(mFolder.at("out")), readFile(mFolder.at("error"))};
}

}  // namespace ktannot::test
