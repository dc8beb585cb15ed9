#include "tools/ktannot/files/SafeName.h"

#include "platform/encoding/Utf8.h"

#include <algorithm>

namespace ktannot {

namespace {

// Leaves room for the number in front and the suffix behind within the usual 255 bytes.
constexpr std::size_t sMaxLength = 120;

bool isKept(char32_t character) {
    if (character < 0x80) {
        static constexpr std::string_view sMarks = " -_+.()[]{}@=,";
        const char ascii = static_cast<char>(character);
        return (ascii >= '0' && ascii <= '9') || (ascii >= 'A' && ascii <= 'Z') || (ascii >= 'a' && ascii <= 'z') ||
               sMarks.find(ascii) != std::string_view::npos;
    }
    return !kt::encoding::isUnsafeCharacter(character);
}

}  // namespace

std::string makeSafeFileName(std::string_view name) {
    std::string safe;
    while (!name.empty()) {
        const kt::encoding::Utf8Character character = kt::encoding::decodeUtf8(name);
        const std::string_view bytes = name.substr(0, character.mLength);
        name.remove_prefix(character.mLength);
        if (character.mIsValid && isKept(character.mCode)) {
            if (safe.size() + bytes.size() > sMaxLength) {
                break;
            }
            safe += bytes;
        } else if (!safe.ends_with('_') && safe.size() < sMaxLength) {
            safe += '_';
        }
    }
    const std::size_t begin = safe.find_first_not_of(" .");
    const std::size_t end = safe.find_last_not_of(" .");
    return begin == std::string::npos ? "view" : safe.substr(begin, end - begin + 1);
}

}  // namespace ktannot
