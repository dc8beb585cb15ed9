/// @file
/// Arguments in any order, each ended by a NUL byte. Contract: every command line is taken or told as wrong usage; what
/// is told has no control characters of the arguments. Nothing runs: the commands declare their options, no more.

#include "library/ktAnnotationLegacyLibrary.h"
#include "tools/ktannot/commands/CheckCommand.h"
#include "tools/ktannot/commands/CommandLine.h"
#include "tools/ktannot/commands/InspectCommand.h"
#include "tools/ktannot/commands/MigrateCommand.h"
#include "tools/ktannot/console/Console.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

/// A command with the options of another one, that does not run.
class Idle : public ktannot::Command {
public:
    explicit Idle(std::unique_ptr<Command> model) : mModel(std::move(model)) {}

    const char* getName() const override { return mModel->getName(); }
    const char* getSummary() const override { return mModel->getSummary(); }
    std::string getDetails() const override { return mModel->getDetails(); }
    void declareOptions(CLI::App& app) override { mModel->declareOptions(app); }
    ktannot::ExitCode run(Channels& /*channels*/) override { return ktannot::ExitCode::AllWell; }

private:
    std::unique_ptr<Command> mModel;
};

std::vector<std::unique_ptr<ktannot::Command>> createCommands() {
    std::vector<std::unique_ptr<ktannot::Command>> commands;
    commands.push_back(std::make_unique<Idle>(std::make_unique<ktannot::MigrateCommand>()));
    commands.push_back(std::make_unique<Idle>(std::make_unique<ktannot::InspectCommand>()));
    commands.push_back(std::make_unique<Idle>(std::make_unique<ktannot::CheckCommand>()));
    return commands;
}

/// Takes what goes to standard output and standard error meanwhile.
class Capture {
public:
    Capture() : mOut(dup(STDOUT_FILENO)), mError(dup(STDERR_FILENO)), mFile(memfd_create("messages", MFD_CLOEXEC)) {
        dup2(mFile, STDOUT_FILENO);
        dup2(mFile, STDERR_FILENO);
    }
    Capture(const Capture&) = delete;
    Capture& operator=(const Capture&) = delete;
    ~Capture() { close(mFile); }

    std::string end() {
        dup2(mOut, STDOUT_FILENO);
        dup2(mError, STDERR_FILENO);
        close(mOut);
        close(mError);
        std::string text(static_cast<std::size_t>(lseek(mFile, 0, SEEK_END)), '\0');
        if (pread(mFile, text.data(), text.size(), 0) != static_cast<ssize_t>(text.size())) {
            std::abort();
        }
        return text;
    }

private:
    int mOut;
    int mError;
    int mFile;
};

bool isSafe(std::string_view text) {
    return text.find_first_of("\x1b\x07\r\x7f") == std::string_view::npos && text.find("\u202e") == std::string::npos;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    kt::initializeKtAnnotationLegacyLibrary();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::vector<std::string> arguments{{}};
    for (std::size_t index = 0; index < size; ++index) {
        if (data[index] == 0) {
            arguments.emplace_back();
        } else {
            arguments.back().push_back(static_cast<char>(data[index]));
        }
    }
    Capture capture;
    ktannot::ExitCode outcome{};
    {
        ktannot::Console console;
        ktannot::ProcessLog log;
        ktannot::Command::Channels channels{console, log};
        outcome = ktannot::CommandLine(createCommands()).run(std::move(arguments), channels);
        console.finish();
    }
    const std::string told = capture.end();
    const bool isKnown = outcome == ktannot::ExitCode::AllWell || outcome == ktannot::ExitCode::WrongUsage;
    if (!isKnown || !isSafe(told) || (outcome == ktannot::ExitCode::WrongUsage && told.empty())) {
        std::abort();
    }
    return 0;
}
