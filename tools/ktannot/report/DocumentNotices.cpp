#include "tools/ktannot/report/DocumentNotices.h"

#include "tools/ktannot/console/TerminalText.h"

namespace ktannot {

std::string describeRefusal(const LegacyDocument& document) {
    const bool isRefused = document.getState() == LegacyDocument::State::Refused;
    return makeTerminalText(document.getSource()) + ": " + (isRefused ? "refused: " : "") +
           makeTerminalText(document.getReason());
}

void tellRefusal(Console& console, const LegacyDocument& document) {
    if (!document.getReason().empty()) {
        console.tell("ktannot: " + describeRefusal(document));
    } else if (!document.getLimit().empty()) {
        console.tell("ktannot: " + makeTerminalText(document.getSource()) +
                     ": a limit was reached: " + document.getLimit());
    }
}

void tellLog(Console& console, const LegacyDocument& document, const std::vector<DocumentLog::Line>& lines) {
    for (const DocumentLog::Line& line : lines) {
        console.tell("ktannot: " + makeTerminalText(document.getSource()) + ": " + makeTerminalText(line.mMessage));
    }
}

}  // namespace ktannot
