#include "platform/encoding/Base64.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace kt::encoding {

namespace {

constexpr std::string_view sAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint8_t sNoDigit = 0xFF;

constexpr auto sDigits = [] {
    std::array<std::uint8_t, 256> digits{};
    digits.fill(sNoDigit);
    for (std::size_t index = 0; index < sAlphabet.size(); ++index) {
        digits[static_cast<unsigned char>(sAlphabet[index])] = static_cast<std::uint8_t>(index);
    }
    return digits;
}();

std::uint8_t digitOf(char character) { return sDigits[static_cast<unsigned char>(character)]; }

bool isBlank(char character) {
    return character == ' ' || character == '\t' || character == '\n' || character == '\r' || character == '\f';
}

}  // namespace

std::string encodeBase64(std::string_view bytes) {
    std::string text(getBase64Size(bytes.size()), '\0');
    encodeBase64(text.data(), bytes);
    return text;
}

char* encodeBase64(char* out, std::string_view bytes) {
    const auto byteAt = [bytes](std::size_t index) {
        return index < bytes.size() ? static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[index])) : 0U;
    };
    for (std::size_t index = 0; index < bytes.size(); index += 3) {
        const std::uint32_t group = byteAt(index) << 16U | byteAt(index + 1) << 8U | byteAt(index + 2);
        const std::size_t left = bytes.size() - index;
        *out++ = sAlphabet[group >> 18U];
        *out++ = sAlphabet[group >> 12U & 63U];
        *out++ = left > 1 ? sAlphabet[group >> 6U & 63U] : '=';
        *out++ = left > 2 ? sAlphabet[group & 63U] : '=';
    }
    return out;
}

bool normalizeBase64(std::string_view text, std::string& base64) {
    base64.clear();
    base64.reserve(text.size() + 2);
    std::size_t index = 0;
    for (; index < text.size(); ++index) {
        if (digitOf(text[index]) != sNoDigit) {
            base64.push_back(text[index]);
        } else if (!isBlank(text[index])) {
            break;
        }
    }
    const std::string_view rest = text.substr(index);
    if (!std::all_of(rest.begin(), rest.end(), [](char character) { return character == '=' || isBlank(character); }) ||
        base64.size() % 4 == 1) {
        return false;
    }
    base64.append((4 - base64.size() % 4) % 4, '=');
    return true;
}

std::string decodeBase64(std::string_view base64) {
    std::string bytes;
    bytes.reserve(base64.size() / 4 * 3);
    std::uint32_t group = 0;
    unsigned bits = 0;
    for (const char character : base64) {
        const std::uint8_t digit = digitOf(character);
        if (digit == sNoDigit) {
            break;
        }
        group = group << 6U | digit;
        bits += 6;
        if (bits >= 8) {
            bits -= 8;
            bytes.push_back(static_cast<char>(group >> bits & 0xFFU));
        }
    }
    return bytes;
}

std::size_t getDecodedSize(std::string_view base64) {
    const std::size_t padding = base64.ends_with("==") ? 2 : (base64.ends_with('=') ? 1 : 0);
    return base64.size() / 4 * 3 - padding;
}

}  // namespace kt::encoding
