#include "tools/ktannot/Command.h"

#include <CLI/CLI.hpp>

#include <map>

namespace ktannot {

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

std::string Command::getExitCodeText() {
    return "Exit codes: 0 all well, 2 wrong usage, 3 done but with problems or messages, 4 a document or view\n"
           "was refused, 5 a limit was reached, 6 a file or the output failed, 7 internal error, 130 and 143\n"
           "interrupted. Of several the highest of 3 to 7 counts.";
}

}  // namespace ktannot
