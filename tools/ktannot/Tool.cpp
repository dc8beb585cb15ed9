#include "tools/ktannot/Tool.h"

#include "library/ktAnnotationLegacyLibrary.h"
#include "tools/ktannot/batch/ProcessSetup.h"
#include "tools/ktannot/commands/CheckCommand.h"
#include "tools/ktannot/commands/CommandLine.h"
#include "tools/ktannot/commands/InspectCommand.h"
#include "tools/ktannot/commands/MigrateCommand.h"
#include "tools/ktannot/commands/VersionCommand.h"
#include "tools/ktannot/console/TerminalText.h"

#include <exception>
#include <memory>
#include <new>
#include <string>
#include <vector>

namespace ktannot {

namespace {

std::vector<std::unique_ptr<Command>> createCommands() {
    std::vector<std::unique_ptr<Command>> commands;
    commands.push_back(std::make_unique<MigrateCommand>());
    commands.push_back(std::make_unique<InspectCommand>());
    commands.push_back(std::make_unique<CheckCommand>());
    commands.push_back(std::make_unique<VersionCommand>());
    return commands;
}

/// Holds one use of the library.
class LibraryUse {
public:
    LibraryUse() { kt::initializeKtAnnotationLegacyLibrary(); }
    LibraryUse(const LibraryUse&) = delete;
    LibraryUse& operator=(const LibraryUse&) = delete;
    ~LibraryUse() { kt::terminateKtAnnotationLegacyLibrary(); }
};

ExitCode runCommand(std::vector<std::string> arguments, Console& console) {
    try {
        const LibraryUse library;
        ProcessLog log;
        Command::Channels channels{console, log};
        return CommandLine(createCommands()).run(std::move(arguments), channels);
    } catch (const std::bad_alloc&) {
        console.tell("ktannot: there is not enough memory");
        return ExitCode::EnvironmentFailed;
    } catch (const std::exception& error) {
        console.tell("ktannot: internal error: " + makeTerminalText(error.what()) +
                     "; please report it with the output of 'ktannot version' and the document");
        return ExitCode::InternalError;
    }
}

}  // namespace

int runTool(int argumentCount, char** arguments) {
    setUpProcess();
    Console console;
    ExitCode outcome = runCommand({arguments + (argumentCount > 0 ? 1 : 0), arguments + argumentCount}, console);
    if (!console.finish() && outcome < ExitCode::EnvironmentFailed) {
        outcome = ExitCode::EnvironmentFailed;
    }
    return static_cast<int>(outcome);
}

}  // namespace ktannot
