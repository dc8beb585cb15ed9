#include "tools/ktannot/console/Console.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>
#include <system_error>

namespace ktannot {

Console::Console() : mOut(STDOUT_FILENO), mError(STDERR_FILENO) {}

Console::~Console() { mOut.flush(); }

void Console::tell(std::string_view message) {
    // What goes to the two outputs keeps its order when both are one terminal.
    mOut.flush();
    mError.write(message);
    mError.write('\n');
    mError.flush();
}

bool Console::finish() {
    if (mOut.flush()) {
        return true;
    }
    if (mOut.getError() != EPIPE) {
        tell("ktannot: cannot write the results: " + std::generic_category().message(mOut.getError()));
    }
    return false;
}

bool Console::isOutputTerminal() { return isatty(STDOUT_FILENO) == 1; }

bool Console::isErrorTerminal() { return isatty(STDERR_FILENO) == 1; }

bool Console::isColored(ColorMode mode) {
    if (mode != ColorMode::Auto) {
        return mode == ColorMode::Always;
    }
    const char* noColor = std::getenv("NO_COLOR");
    const char* terminal = std::getenv("TERM");
    return isOutputTerminal() && (noColor == nullptr || *noColor == '\0') &&
           (terminal == nullptr || std::string_view(terminal) != "dumb");
}

}  // namespace ktannot
