#include "platform/annotation/Characters_p.h"
#include "platform/encoding/Utf8.h"

namespace kt::text {

char32_t toShownCharacter(char32_t character) {
    if (character == 0x09 || character == 0x0A || character == 0x0D || character == 0x85 || character == 0x2028 ||
        character == 0x2029) {
        return U' ';
    }
    const bool isControl = character < 0x20 || (character >= 0x7F && character <= 0x9F);
    return isControl || encoding::isNoncharacter(character) ? encoding::sReplacementCharacter : character;
}

void appendShownCharacters(std::string_view bytes, std::u32string& characters) {
    while (!bytes.empty()) {
        const encoding::Utf8Character character = encoding::decodeUtf8(bytes);
        characters.push_back(toShownCharacter(character.mCode));
        bytes.remove_prefix(character.mLength);
    }
}

}  // namespace kt::text
