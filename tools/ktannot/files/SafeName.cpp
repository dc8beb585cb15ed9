#include "tools/ktannot/files/SafeName.h"

#include "platform/encoding/Hex.h"
#include "platform/encoding/Utf8.h"

#include <algorithm>
#include <cstdint>

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

std::string addSuffix(const std::string& path, std::string_view suffix) {
    static constexpr std::size_t sMaxName = 255;
    static constexpr unsigned sHashDigits = 8;
    const std::size_t name = path.rfind('/') + 1;
    if (path.size() - name + suffix.size() <= sMaxName) {
        return path + std::string(suffix);
    }
    std::uint32_t hash = 0x811C9DC5;
    for (const char byte : std::string_view(path).substr(name)) {
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x01000193;
    }
    std::size_t end = name + sMaxName - suffix.size() - sHashDigits - 1;
    // Not within a character.
    while (end > name && (static_cast<unsigned char>(path[end]) & 0xC0U) == 0x80U) {
        --end;
    }
    std::string cut = path.substr(0, end) + "~";
    kt::encoding::appendHex(cut, hash, sHashDigits);
    return cut += suffix;
}

}  // namespace ktannot
