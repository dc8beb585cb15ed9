#include "platform/annotation/Characters_p.h"
#include "platform/encoding/Utf8.h"

namespace kt::text {

char32_t toShownCharacter(char32_t character) {
    if (character == 0x09 || character == 0x0A || character == 0x0D || character == 0x85 || character == 0x2028 ||
        character == 0x2029) {
        return U' ';
    }
    const bool isInXml = character >= 0x20 && character != 0xFFFE && character != 0xFFFF;
    return isInXml ? character : encoding::sReplacementCharacter;
}

void appendShownCharacters(std::string_view bytes, std::u32string& characters) {
    while (!bytes.empty()) {
        const encoding::Utf8Character character = encoding::decodeUtf8(bytes);
        // A carriage return and a line feed are one line end.
        if (!bytes.starts_with("\r\n")) {
            characters.push_back(toShownCharacter(character.mCode));
        }
        bytes.remove_prefix(character.mLength);
    }
}

}  // namespace kt::text
