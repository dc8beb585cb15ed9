#include "platform/svg/TextBuffer_p.h"
#include "platform/svg/XmlText_p.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace kt::svg {

namespace {

constexpr std::uint64_t sOnes = 0x0101010101010101U;
constexpr std::uint64_t sHighBits = 0x8080808080808080U;

constexpr std::uint64_t repeat(char character) { return sOnes * static_cast<unsigned char>(character); }

/// Marks zero bytes; exact as to whether there is one.
constexpr std::uint64_t findZero(std::uint64_t bytes) { return (bytes - sOnes) & ~bytes & sHighBits; }

constexpr bool isPlain(unsigned char byte) {
    return byte >= 0x20 && byte < 0x80 && byte != '&' && byte != '<' && byte != '>' && byte != '"';
}

/// Whether eight bytes are all plain ASCII that may be copied.
bool arePlain(std::uint64_t bytes) {
    const std::uint64_t controls = (bytes - sOnes * 0x20U) & ~bytes & sHighBits;
    const std::uint64_t specials = findZero(bytes ^ repeat('&')) | findZero(bytes ^ repeat('<')) |
                                   findZero(bytes ^ repeat('>')) | findZero(bytes ^ repeat('"'));
    return ((bytes & sHighBits) | controls | specials) == 0;
}

std::size_t countPlain(const char* text, std::size_t size) {
    std::size_t count = 0;
    while (size - count >= sizeof(std::uint64_t)) {
        std::uint64_t bytes = 0;
        std::memcpy(&bytes, text + count, sizeof(bytes));
        if (!arePlain(bytes)) {
            break;
        }
        count += sizeof(bytes);
    }
    while (count < size && isPlain(static_cast<unsigned char>(text[count]))) {
        ++count;
    }
    return count;
}

/// A sequence of bytes that begins with one of 0x80 and above.
struct Sequence {
    std::size_t mLength;  ///< of the character, or of the broken beginning of one
    bool mIsCharacter;    ///< one that XML may hold
};

Sequence readSequence(const char* text, std::size_t size) {
    const auto byteAt = [&](std::size_t index) { return static_cast<unsigned char>(text[index]); };
    const unsigned lead = byteAt(0);
    // The second byte's range keeps overlong forms, surrogates and what lies beyond U+10FFFF out.
    unsigned low = 0x80;
    unsigned high = 0xBF;
    std::size_t length = 0;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        low = lead == 0xE0 ? 0xA0 : low;
        high = lead == 0xED ? 0x9F : high;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        low = lead == 0xF0 ? 0x90 : low;
        high = lead == 0xF4 ? 0x8F : high;
    } else {
        return {1, false};
    }
    for (std::size_t index = 1; index < length; ++index) {
        if (index >= size || byteAt(index) < low || byteAt(index) > high) {
            return {index, false};
        }
        low = 0x80;
        high = 0xBF;
    }
    const bool isNoncharacter = lead == 0xEF && byteAt(1) == 0xBF && byteAt(2) >= 0xBE;
    return {length, !isNoncharacter};
}

std::string_view replaceAscii(char character, XmlContext context) {
    switch (character) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '"':
            return context == XmlContext::Attribute ? "&quot;" : "\"";
        case '\t':
            return context == XmlContext::Attribute ? "&#9;" : "\t";
        case '\n':
            return context == XmlContext::Attribute ? "&#10;" : "\n";
        case '\r':
            // Parsers turn a bare one into a line feed.
            return "&#13;";
        default:
            return "\xEF\xBF\xBD";
    }
}

}  // namespace

void appendXmlText(TextBuffer& buffer, std::string_view text, XmlContext context) {
    while (!text.empty()) {
        std::size_t clean = countPlain(text.data(), text.size());
        while (clean < text.size() && static_cast<unsigned char>(text[clean]) >= 0x80) {
            const Sequence sequence = readSequence(text.data() + clean, text.size() - clean);
            if (!sequence.mIsCharacter) {
                break;
            }
            clean += sequence.mLength;
            clean += countPlain(text.data() + clean, text.size() - clean);
        }
        buffer.append(text.substr(0, clean));
        text.remove_prefix(clean);
        if (text.empty()) {
            return;
        }
        const bool isAscii = static_cast<unsigned char>(text.front()) < 0x80;
        buffer.append(replaceAscii(isAscii ? text.front() : '\0', context));
        text.remove_prefix(isAscii ? 1 : readSequence(text.data(), text.size()).mLength);
    }
}

std::string_view cutUtf8(std::string_view text, std::size_t size) {
    if (text.size() <= size) {
        return text;
    }
    constexpr std::size_t maxContinuations = 3;
    for (std::size_t back = 0; back <= std::min(maxContinuations, size); ++back) {
        if ((static_cast<unsigned char>(text[size - back]) & 0xC0U) != 0x80U) {
            return text.substr(0, size - back);
        }
    }
    return text.substr(0, size);
}

}  // namespace kt::svg
