#include "tools/ktannot/commands/CommandLine.h"

#include "tools/ktannot/EnvironmentError.h"
#include "tools/ktannot/UsageError.h"
#include "tools/ktannot/commands/Suggestion.h"
#include "tools/ktannot/commands/VersionCommand.h"
#include "tools/ktannot/console/TerminalText.h"

#include <CLI/CLI.hpp>
#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <sstream>

namespace ktannot {

namespace {

constexpr const char* sDescription =
    "Turns legacy 3D annotations, from binary documents (.kts) and variant documents (.json), into drawings.";

constexpr const char* sExamples =
    "Examples:\n"
    "  ktannot migrate archive/        a drawing of every view of every document of a folder\n"
    "  ktannot part.kts                what a document holds, as a tree; the same as ktannot inspect part.kts\n"
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
    tellLines(console, "ktannot: " + messages.str());
    return ExitCode::WrongUsage;
}

std::string suggest(const std::string& nearest) {
    return nearest.empty() ? std::string() : "; did you mean '" + nearest + "'?";
}

bool isCommand(CLI::App& app, const std::string& word) {
    return !app.get_subcommands([&word](CLI::App* command) { return command->get_name() == word; }).empty();
}

/// Throws UsageError unless the arguments begin with a command or an option of the tool itself. The parser would only
/// say that there is no command. A file alone is inspected.
void checkFirstArgument(CLI::App& app, std::vector<std::string>& arguments) {
    if (arguments.empty()) {
        throw UsageError("a command is missing\n" + app.help());
    }
    const std::string& first = arguments.front();
    if (isCommand(app, first) || (first.starts_with('-') && app.get_option_no_throw(first) != nullptr)) {
        return;
    }
    struct stat status {};
    if (stat(first.c_str(), &status) == 0) {
        if (arguments.size() == 1 && !S_ISDIR(status.st_mode)) {
            arguments.insert(arguments.begin(), "inspect");
            return;
        }
        throw UsageError("'" + first + "' is no command; did you mean 'ktannot migrate " + first + "' (draw it) or " +
                         "'ktannot inspect " + first + "' (look at it)?");
    }
    std::vector<std::string> words;
    for (const CLI::App* command : app.get_subcommands({})) {
        words.push_back(command->get_name());
    }
    const std::string nearest = findNearest(first, words);
    throw UsageError("'" + first + "' is no command" +
                     (nearest.empty() ? "; 'ktannot --help' lists them" : suggest(nearest)));
}

/// Throws UsageError for an option that the command does not have. The parser's message would only repeat it, or tell
/// that something else is missing.
void checkOptions(CLI::App& app, const std::vector<std::string>& arguments) {
    const auto isOption = [](const std::string& word) {
        return word.size() > 1 && word[0] == '-' && (word[1] == '-' ? word.size() > 2 : std::isalpha(word[1]) != 0);
    };
    CLI::App* command = isCommand(app, arguments.front()) ? app.get_subcommand(arguments.front()) : &app;
    std::vector<std::string> names;
    for (const CLI::Option* option : command->get_options()) {
        for (const std::string& name : option->get_lnames()) {
            names.push_back("--" + name);
        }
    }
    const auto end = std::find(arguments.begin(), arguments.end(), "--");
    for (auto word = arguments.begin(); word != end; ++word) {
        const bool isLong = word->starts_with("--");
        const std::string name = word->substr(0, isLong ? word->find('=') : 2);
        if (isOption(*word) && command->get_option_no_throw(name) == nullptr) {
            throw UsageError("'" + name + "' is no option of '" + command->get_name() + "'" +
                             suggest(isLong ? findNearest(name, names) : std::string()) + "\nRun with --help for all.");
        }
    }
}

}  // namespace

CommandLine::CommandLine(std::vector<std::unique_ptr<Command>> commands) : mCommands(std::move(commands)) {}

ExitCode CommandLine::run(std::vector<std::string> arguments, Command::Channels& channels) {
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
        checkOptions(app, arguments);
        // The parser takes arguments from the back.
        std::reverse(arguments.begin(), arguments.end());
        app.parse(std::move(arguments));
        return chosen->run(channels);
    } catch (const CLI::ParseError& error) {
        return endParsing(app, error, channels.mConsole);
    } catch (const UsageError& error) {
        tellLines(channels.mConsole, std::string("ktannot: ") + error.what());
        return ExitCode::WrongUsage;
    } catch (const EnvironmentError& error) {
        tellLines(channels.mConsole, std::string("ktannot: ") + error.what());
        return ExitCode::EnvironmentFailed;
    }
}

}  // namespace ktannot
