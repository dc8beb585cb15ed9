#include "platform/encoding/Base64.h"

#include <cstdint>

namespace kt::encoding {

std::string encodeBase64(std::string_view bytes) {
    static constexpr std::string_view sDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    const auto byteAt = [bytes](std::size_t index) {
        return index < bytes.size() ? static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[index])) : 0U;
    };
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t index = 0; index < bytes.size(); index += 3) {
        const std::uint32_t group = (byteAt(index) << 16) | (byteAt(index + 1) << 8) | byteAt(index + 2);
        text += sDigits[group >> 18];
        text += sDigits[(group >> 12) & 63U];
        text += index + 1 < bytes.size() ? sDigits[(group >> 6) & 63U] : '=';
        text += index + 2 < bytes.size() ? sDigits[group & 63U] : '=';
    }
    return text;
}

}  // namespace kt::encoding
