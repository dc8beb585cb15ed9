#pragma once

/// @file
/// Standard output and standard error.

#include "tools/ktannot/console/TextOutput.h"

#include <string_view>

namespace ktannot {

enum class ColorMode { Auto, Always, Never };

/// Where commands write: results to the output, messages to the error output. Foreign text goes through
/// makeTerminalText() or JsonWriter first.
class Console {
public:
    /// Writes to standard output and standard error.
    Console();
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;
    /// Flushes what is left.
    ~Console();

    /// Results.
    TextOutput& out() { return mOut; }
    /// Writes a line for people to standard error, at once.
    /// @param message  safe to show, without line end.
    void tell(std::string_view message);
    /// Flushes the results. On failure says so (not when the reader of a pipe simply left) and gives false.
    bool finish();

    static bool isOutputTerminal();
    static bool isErrorTerminal();
    /// Whether results are shown in colour: by default when standard output is a terminal that knows colours and
    /// NO_COLOR is not set.
    static bool isColored(ColorMode mode);

private:
    TextOutput mOut;
    TextOutput mError;
};

}  // namespace ktannot
