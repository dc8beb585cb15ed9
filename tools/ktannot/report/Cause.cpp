#include "tools/ktannot/report/Cause.h"

#include "tools/ktannot/console/TerminalText.h"

namespace ktannot {

namespace {

constexpr std::size_t sMaxLength = 100;

bool isDigit(char character) { return character >= '0' && character <= '9'; }

}  // namespace

std::string findCause(std::string_view message, std::string_view remedy) {
    if (remedy == "view-metadata") {
        return "metadata of the view";
    }
    if (remedy == "known-metadata") {
        return "metadata under known keys";
    }
    if (remedy == "other-metadata") {
        return "metadata under other keys";
    }
    std::string cause;
    for (std::size_t index = 0; index < message.size() && cause.size() < sMaxLength; ++index) {
        const char character = message[index];
        if (isDigit(character)) {
            if (!cause.ends_with('N')) {
                cause += 'N';
            }
            continue;
        }
        cause += character;
        if (character == '\'' || character == '"') {
            const std::size_t end = message.find(character, index + 1);
            if (end != std::string_view::npos) {
                cause += "...";
                cause += character;
                index = end;
            }
        }
    }
    return makeTerminalText(cause);
}

}  // namespace ktannot
