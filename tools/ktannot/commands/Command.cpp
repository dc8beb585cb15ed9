#include "tools/ktannot/commands/Command.h"

#include "tools/ktannot/UsageError.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <map>

namespace ktannot {

namespace {

/// Bytes from a number with an optional suffix K, M or G; nothing when it is neither.
std::optional<std::uint64_t> parseSize(const std::string& text) {
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const std::string suffix(end, text.data() + text.size());
    static const std::map<std::string, int> sShifts{{"", 0}, {"K", 10}, {"M", 20}, {"G", 30}};
    const auto shift = sShifts.find(suffix);
    if (error != std::errc() || number == 0 || shift == sShifts.end() || number > (UINT64_MAX >> shift->second)) {
        return std::nullopt;
    }
    return number << shift->second;
}

}  // namespace

void Command::declareInputs(CLI::App& app, std::vector<std::string>& inputs) {
    app.add_option("INPUT", inputs, "Files, folders (searched for *.kts and *.json) or - for standard input")
        ->required()
        ->type_name("");
}

void Command::declareColor(CLI::App& app, ColorMode& mode) {
    static const std::map<std::string, ColorMode> sWords{
        {"always", ColorMode::Always}, {"auto", ColorMode::Auto}, {"never", ColorMode::Never}};
    app.add_option_function<std::string>(
           "--color", [&mode](const std::string& word) { mode = sWords.at(word); },
           "Colours: auto (default: on a terminal, unless NO_COLOR is set), always or never")
        ->check(CLI::IsMember(sWords).description(""))
        ->type_name("WHEN");
}

CLI::Option* Command::declareMemoryLimit(CLI::App& app, std::optional<std::uint64_t>& limit) {
    return app
        .add_option_function<std::string>(
            "--memory-limit",
            [&limit](const std::string& text) {
                limit = parseSize(text);
                if (!limit) {
                    throw UsageError("--memory-limit takes a number of bytes, or one with K, M or G behind it");
                }
            },
            "Memory that one document may take, for example 500M or 2G")
        ->type_name("SIZE");
}

std::string Command::getExitCodeText() {
    return "Exit codes: 0 all well, 2 wrong usage, 3 done but with problems or messages, 4 a document or view\n"
           "was refused, 5 a limit was reached, 6 a file or the output failed, 7 internal error, 130 and 143\n"
           "interrupted. Of several the highest of 3 to 7 counts.";
}

}  // namespace ktannot
