#include "tools/ktannot/DocumentNotices.h"

#include "tools/ktannot/TerminalText.h"

namespace ktannot {

std::string describeRefusal(const LegacyDocument& document) {
    const bool isRefused = document.getState() == LegacyDocument::State::Refused;
    return makeTerminalText(document.getSource()) + ": " + (isRefused ? "refused: " : "") +
           makeTerminalText(document.getReason());
}

void tellNotices(Console& console, const LegacyDocument& document, const std::vector<DocumentLog::Line>& log) {
    if (!document.getReason().empty()) {
        console.tell("ktannot: " + describeRefusal(document));
    } else if (!document.getLimit().empty()) {
        console.tell("ktannot: " + makeTerminalText(document.getSource()) +
                     ": a limit was reached: " + document.getLimit());
    }
    for (const DocumentLog::Line& line : log) {
        console.tell("ktannot: " + makeTerminalText(document.getSource()) + ": " + makeTerminalText(line.mMessage));
    }
}

}  // namespace ktannot
