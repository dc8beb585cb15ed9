#include "tools/ktannot/console/TerminalText.h"

#include "platform/encoding/Hex.h"
#include "platform/encoding/Utf8.h"

#include <limits>

namespace ktannot {

namespace {

// Joiners change how their neighbours look, as scripts need it, and nothing else.
bool isJoiner(char32_t code) { return code == 0x200C || code == 0x200D; }

void appendEscape(std::string& text, char32_t code) {
    if (code == '\n' || code == '\t') {
        text += code == '\n' ? "\\n" : "\\t";
    } else if (code < 0x80) {
        kt::encoding::appendHex(text += "\\x", code, 2);
    } else if (code <= 0xFFFF) {
        kt::encoding::appendHex(text += "\\u", code, 4);
    } else {
        kt::encoding::appendHex(text += "\\U", code, 8);
    }
}

}  // namespace

std::string makeTerminalText(std::string_view text) {
    return makeTerminalText(text, std::numeric_limits<std::size_t>::max());
}

std::string makeTerminalText(std::string_view text, std::size_t maxCharacters) {
    std::string safe;
    for (; !text.empty() && maxCharacters != 0; --maxCharacters) {
        const kt::encoding::Utf8Character character = kt::encoding::decodeUtf8(text);
        if (!character.mIsValid) {
            for (const char byte : text.substr(0, character.mLength)) {
                kt::encoding::appendHex(safe += "\\x", static_cast<unsigned char>(byte), 2);
            }
        } else if (kt::encoding::isUnsafeCharacter(character.mCode) && !isJoiner(character.mCode)) {
            appendEscape(safe, character.mCode);
        } else {
            safe += text.substr(0, character.mLength);
        }
        text.remove_prefix(character.mLength);
    }
    return text.empty() ? safe : safe + "…";
}

}  // namespace ktannot
