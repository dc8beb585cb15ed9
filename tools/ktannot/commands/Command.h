#pragma once

/// @file
/// Base of the tool's commands.

#include "tools/ktannot/ProcessLog.h"
#include "tools/ktannot/console/Console.h"
#include "tools/ktannot/report/ExitCode.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace ktannot {

/// A command of the tool: declares its options, then runs with what they were set to.
class Command {
public:
    /// Where a command writes: results and messages, and the log that the library writes to meanwhile. The library is
    /// initialised while a command runs.
    struct Channels {
        Console& mConsole;
        ProcessLog& mLog;
    };

    Command() = default;
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;
    virtual ~Command() = default;

    /// The word on the command line and what the command does, in a few words.
    virtual const char* getName() const = 0;
    virtual const char* getSummary() const = 0;
    /// Examples and exit codes, shown below the options.
    virtual std::string getDetails() const = 0;
    /// Declares options and arguments, bound to members of this.
    virtual void declareOptions(CLI::App& app) = 0;
    /// Does the work. Throws UsageError before anything is done when the options do not fit together. The results on
    /// the console are flushed by the caller.
    virtual ExitCode run(Channels& channels) = 0;

    /// The option --memory-limit, in bytes; limit stays as it is without the option.
    static CLI::Option* declareMemoryLimit(CLI::App& app, std::optional<std::uint64_t>& limit);

protected:
    /// The arguments INPUT..., at least one.
    static void declareInputs(CLI::App& app, std::vector<std::string>& inputs);
    /// The option --color.
    static void declareColor(CLI::App& app, ColorMode& mode);
    /// The part of the details that is the same for all commands.
    static std::string getExitCodeText();
};

}  // namespace ktannot
