#include "tools/ktannot/report/DocumentNotices.h"

#include "tools/ktannot/console/TerminalText.h"

namespace ktannot {

std::string describeRefusal(const SourceDocument& document) {
    const bool isRefused = document.mDocument.getState() == ktLegacy::ktLegacyDocument::State::Refused;
    return makeTerminalText(document.mSource) + ": " + (isRefused ? "refused: " : "") +
           makeTerminalText(document.getReason());
}

void tellRefusal(Console& console, const SourceDocument& document) {
    if (!document.getReason().empty()) {
        console.tell("ktannot: " + describeRefusal(document));
    } else if (!document.mDocument.getLimit().empty()) {
        console.tell("ktannot: " + makeTerminalText(document.mSource) +
                     ": a limit was reached: " + document.mDocument.getLimit());
    }
}

}  // namespace ktannot
