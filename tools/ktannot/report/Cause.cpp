#include "tools/ktannot/report/Cause.h"

#include "tools/ktannot/console/TerminalText.h"

namespace ktannot {

namespace {

constexpr std::size_t sMaxLength = 100;

bool isDigit(char character) { return character >= '0' && character <= '9'; }

}  // namespace

std::string findCause(const ktLegacy::ktLegacyFinding& finding) {
    using ktLegacy::ktFindingCode;
    switch (finding.mCode) {
        case ktFindingCode::ViewMetadata:
            return "metadata of the view";
        case ktFindingCode::KnownMetadata:
            return "metadata under known keys";
        case ktFindingCode::OtherMetadata:
            return "metadata under other keys";
        default:
            return ktLegacy::getFindingKind(finding.mCode).mSentence;
    }
}

std::string findCause(std::string_view message) {
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
