#pragma once

/// @file
/// The tool's command line.

#include "tools/ktannot/commands/Command.h"

#include <memory>
#include <vector>

namespace ktannot {

/// Parses arguments and runs the command that they name.
class CommandLine {
public:
    /// @param commands  in the order in which the help lists them.
    explicit CommandLine(std::vector<std::unique_ptr<Command>> commands);

    /// Runs a command, or shows help. Wrong usage is told on standard error.
    /// @param arguments  without the program's name.
    ExitCode run(std::vector<std::string> arguments, Command::Channels& channels);

private:
    std::vector<std::unique_ptr<Command>> mCommands;
};

}  // namespace ktannot
