#include "platform/encoding/Utf8.h"
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
constexpr std::size_t sBlockSize = sizeof(std::uint64_t);

/// Texts are written in pieces of so many bytes, so that room for the longest spelling of a piece is reserved at once.
constexpr std::size_t sPieceSize = 256;
constexpr std::size_t sMaxSpelling = std::string_view("&quot;").size();
static_assert(sPieceSize * sMaxSpelling <= TextBuffer::sMaxReserve);

constexpr std::uint64_t repeat(char character) { return sOnes * static_cast<unsigned char>(character); }

/// Marks zero bytes; exact as to whether there is one.
constexpr std::uint64_t findZero(std::uint64_t bytes) { return (bytes - sOnes) & ~bytes & sHighBits; }

/// Marks zero bytes and no others.
constexpr std::uint64_t findZeros(std::uint64_t bytes) {
    return ~(((bytes & ~sHighBits) + ~sHighBits) | bytes) & sHighBits;
}

constexpr bool isPlain(unsigned char byte) {
    return byte >= 0x20 && byte < 0x80 && byte != '&' && byte != '<' && byte != '>' && byte != '"';
}

constexpr auto sIsPlain = [] {
    std::array<bool, 256> table{};
    for (std::size_t byte = 0; byte < table.size(); ++byte) {
        table[byte] = isPlain(static_cast<unsigned char>(byte));
    }
    return table;
}();

/// Marks bytes below 0x20; exact as to whether there is one.
constexpr std::uint64_t findControl(std::uint64_t bytes) { return (bytes - sOnes * 0x20U) & ~bytes & sHighBits; }

/// Marks bytes that are not plain; exact as to whether there is one.
constexpr std::uint64_t findSpecial(std::uint64_t bytes) {
    // One bit tells '&' from '"' and another one '>' from '<': with the bit set, both are found at once.
    static_assert(('"' | 4) == '&' && ('<' | 2) == '>');
    return (bytes & sHighBits) | findControl(bytes) | findZero((bytes | sOnes * 4U) ^ repeat('&')) |
           findZero((bytes | sOnes * 2U) ^ repeat('>'));
}

std::uint64_t loadBlock(const char* text) {
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, text, sizeof(bytes));
    return bytes;
}

/// A text of fewer than eight bytes, some of them twice. Neighbours that are none in the text are its last and its
/// first byte.
std::uint64_t loadShort(std::string_view text) {
    constexpr std::size_t half = sBlockSize / 2;
    if (text.size() >= half) {
        std::array<char, sBlockSize> block{};
        std::memcpy(block.data(), text.data() + text.size() - half, half);
        std::memcpy(block.data() + half, text.data(), half);
        return loadBlock(block.data());
    }
    std::uint64_t bytes = repeat('.');
    for (const char character : text) {
        bytes = bytes << 8U | static_cast<unsigned char>(character);
    }
    return bytes;
}

bool hasWhiteControl(std::string_view text) { return text.find_first_of("\t\n\r") != std::string_view::npos; }

/// Writes an ASCII character that is not plain.
char* putSpecial(char* out, char character, XmlContext context) {
    const bool isAttribute = context == XmlContext::Attribute;
    switch (character) {
        case '&':
            return putLiteral(out, "&amp;");
        case '<':
            return putLiteral(out, "&lt;");
        case '>':
            return putLiteral(out, "&gt;");
        case '"':
            return isAttribute ? putLiteral(out, "&quot;") : putLiteral(out, "\"");
        case '\t':
            return isAttribute ? putLiteral(out, "&#9;") : putLiteral(out, "\t");
        case '\n':
            return isAttribute ? putLiteral(out, "&#10;") : putLiteral(out, "\n");
        case '\r':
            // Parsers turn a bare one into a line feed.
            return putLiteral(out, "&#13;");
        default:
            return std::ranges::copy(encoding::sReplacementText, out).out;
    }
}

/// @param out  room for sMaxSpelling characters for each byte.
char* putXmlText(char* out, std::string_view text, XmlContext context) {
    const char* in = text.data();
    const char* const end = in + text.size();
    while (in != end) {
        for (; static_cast<std::size_t>(end - in) >= sBlockSize && findSpecial(loadBlock(in)) == 0; in += sBlockSize) {
            std::memcpy(out, in, sBlockSize);
            out += sBlockSize;
        }
        while (in != end && sIsPlain[static_cast<unsigned char>(*in)]) {
            *out++ = *in++;
        }
        if (in == end) {
            break;
        }
        if (static_cast<unsigned char>(*in) < 0x80) {
            out = putSpecial(out, *in++, context);
            continue;
        }
        const encoding::Utf8Character character = encoding::decodeUtf8({in, static_cast<std::size_t>(end - in)});
        // The first plane's last two are no characters of XML.
        const bool isHeld = character.mIsValid && character.mCode != 0xFFFE && character.mCode != 0xFFFF;
        out = isHeld ? std::copy_n(in, character.mLength, out) : std::ranges::copy(encoding::sReplacementText, out).out;
        in += character.mLength;
    }
    return out;
}

}  // namespace

TextScan scanText(std::string_view text) {
    std::uint64_t specials = 0;
    std::uint64_t controls = 0;
    std::uint64_t blankPairs = 0;
    const auto scanBlock = [&](std::uint64_t bytes) {
        specials |= findSpecial(bytes);
        controls |= findControl(bytes);
        const std::uint64_t blanks = findZeros(bytes ^ repeat(' '));
        blankPairs |= blanks & (blanks >> 8U);
    };
    // Blocks overlap by a byte at least, so that each pair of neighbours lies in one.
    std::size_t position = 0;
    for (; position + sBlockSize < text.size(); position += sBlockSize - 1) {
        scanBlock(loadBlock(text.data() + position));
    }
    scanBlock(text.size() >= sBlockSize ? loadBlock(text.data() + text.size() - sBlockSize) : loadShort(text));
    // A pair of the last and the first blank needs no thought: blanks at the ends are fragile, too.
    const bool isBlankAtEnd = text.empty() || text.front() == ' ' || text.back() == ' ';
    return {specials == 0, isBlankAtEnd || blankPairs != 0 || (controls != 0 && hasWhiteControl(text))};
}

void appendXmlText(TextBuffer& buffer, std::string_view text, XmlContext context) {
    while (!text.empty()) {
        const std::string_view piece = encoding::cutUtf8(text, sPieceSize);
        buffer.commit(putXmlText(buffer.reserve(sPieceSize * sMaxSpelling), piece, context));
        text.remove_prefix(piece.size());
    }
}

}  // namespace kt::svg
