#include "tools/ktannot/commands/CommandLine.h"

#include "tools/ktannot/UsageError.h"
#include "tools/ktannot/commands/VersionCommand.h"
#include "tools/ktannot/console/TerminalText.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <sstream>

namespace ktannot {

namespace {

constexpr const char* sDescription =
    "Turns legacy 3D annotations, from binary documents (.kts) and variant documents (.json), into drawings.";

constexpr const char* sExamples =
    "Examples:\n"
    "  ktannot migrate archive/        a drawing of every view of every document of a folder\n"
    "  ktannot inspect part.kts        what a document holds, as a tree\n"
    "  ktannot inspect --json part.kts the same for programs\n"
    "  ktannot check archive/          every problem of every document of a folder\n"
    "  ktannot COMMAND --help          options and more examples";

/// Shows a text of several lines, which may repeat arguments.
void tellLines(Console& console, const std::string& text) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        console.tell(makeTerminalText(line));
    }
}

ExitCode endParsing(const CLI::App& app, const CLI::ParseError& error, Console& console) {
    std::ostringstream results;
    std::ostringstream messages;
    const bool isRequest = app.exit(error, results, messages) == 0;
    console.out().write(results.str());
    if (isRequest) {
        return ExitCode::AllWell;
    }
    tellLines(console, messages.str());
    return ExitCode::WrongUsage;
}

/// Throws UsageError unless the arguments begin with a command or an option of the tool itself. The parser would only
/// say that there is no command.
void checkFirstArgument(CLI::App& app, const std::vector<std::string>& arguments) {
    if (arguments.empty()) {
        throw UsageError("a command is missing\n" + app.help());
    }
    const std::string& first = arguments.front();
    const bool isOption = first.starts_with('-') && app.get_option_no_throw(first) != nullptr;
    if (!isOption &&
        app.get_subcommands([&first](CLI::App* command) { return command->get_name() == first; }).empty()) {
        throw UsageError("'" + first + "' is no command; 'ktannot --help' lists them");
    }
}

}  // namespace

CommandLine::CommandLine(std::vector<std::unique_ptr<Command>> commands) : mCommands(std::move(commands)) {}

ExitCode CommandLine::run(std::vector<std::string> arguments, Command::Surroundings& surroundings) {
    CLI::App app(sDescription, "ktannot");
    app.footer(sExamples);
    app.set_version_flag("--version", VersionCommand::getText());
    // With one command at most, later words that look like a command are inputs.
    app.require_subcommand(1);
    Command* chosen = nullptr;
    for (const std::unique_ptr<Command>& command : mCommands) {
        CLI::App* parser = app.add_subcommand(command->getName(), command->getSummary());
        parser->footer(command->getDetails());
        command->declareOptions(*parser);
        parser->parse_complete_callback([&chosen, &command] { chosen = command.get(); });
    }
    try {
        checkFirstArgument(app, arguments);
        // The parser takes arguments from the back.
        std::reverse(arguments.begin(), arguments.end());
        app.parse(std::move(arguments));
        return chosen->run(surroundings);
    } catch (const CLI::ParseError& error) {
        return endParsing(app, error, surroundings.mConsole);
    } catch (const UsageError& error) {
        tellLines(surroundings.mConsole, std::string("ktannot: ") + error.what());
        return ExitCode::WrongUsage;
    }
}

}  // namespace ktannot
