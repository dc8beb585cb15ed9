#include "platform/annotation/Characters_p.h"

namespace kt::text {

namespace {

/// Shape of a UTF-8 sequence as told by its first byte. The second byte's range excludes overlong forms, surrogates and
/// what lies beyond U+10FFFF.
struct SequenceForm {
    unsigned mLength;
    char32_t mFirstBits;
    unsigned char mSecondMin;
    unsigned char mSecondMax;
};

SequenceForm getSequenceForm(unsigned char lead) {
    if (lead >= 0xC2 && lead <= 0xDF) {
        return {2, lead & 0x1FU, 0x80, 0xBF};
    }
    if (lead >= 0xE0 && lead <= 0xEF) {
        const unsigned char min = lead == 0xE0 ? 0xA0 : 0x80;
        const unsigned char max = lead == 0xED ? 0x9F : 0xBF;
        return {3, lead & 0x0FU, min, max};
    }
    if (lead >= 0xF0 && lead <= 0xF4) {
        const unsigned char min = lead == 0xF0 ? 0x90 : 0x80;
        const unsigned char max = lead == 0xF4 ? 0x8F : 0xBF;
        return {4, lead & 0x07U, min, max};
    }
    return {0, 0, 0, 0};
}

}  // namespace

char32_t decodeCharacter(std::string_view bytes, std::size_t& position) {
    const auto lead = static_cast<unsigned char>(bytes[position++]);
    if (lead < 0x80) {
        return lead;
    }
    const SequenceForm form = getSequenceForm(lead);
    char32_t character = form.mFirstBits;
    for (unsigned index = 1; index < form.mLength; ++index) {
        const unsigned char next = position < bytes.size() ? static_cast<unsigned char>(bytes[position]) : 0;
        const unsigned char min = index == 1 ? form.mSecondMin : 0x80;
        const unsigned char max = index == 1 ? form.mSecondMax : 0xBF;
        if (next < min || next > max) {
            return sReplacementCharacter;
        }
        character = (character << 6) | (next & 0x3FU);
        ++position;
    }
    return form.mLength == 0 ? sReplacementCharacter : character;
}

char32_t toShownCharacter(char32_t character) {
    if (character == 0x09 || character == 0x0A || character == 0x0D || character == 0x85 || character == 0x2028 ||
        character == 0x2029) {
        return U' ';
    }
    const bool isControl = character < 0x20 || (character >= 0x7F && character <= 0x9F);
    const bool isNoCharacter = (character & 0xFFFEU) == 0xFFFE || (character >= 0xFDD0 && character <= 0xFDEF);
    return isControl || isNoCharacter ? sReplacementCharacter : character;
}

void appendShownCharacters(std::string_view bytes, std::u32string& characters) {
    for (std::size_t position = 0; position < bytes.size();) {
        characters.push_back(toShownCharacter(decodeCharacter(bytes, position)));
    }
}

void appendUtf8(char32_t character, std::string& bytes) {
    const auto appendByte = [&bytes](char32_t byte) { bytes.push_back(static_cast<char>(byte)); };
    const auto appendTail = [&](unsigned shift) { appendByte(0x80U | ((character >> shift) & 0x3FU)); };
    if (character < 0x80) {
        appendByte(character);
    } else if (character < 0x800) {
        appendByte(0xC0U | (character >> 6));
        appendTail(0);
    } else if (character < 0x10000) {
        appendByte(0xE0U | (character >> 12));
        appendTail(6);
        appendTail(0);
    } else {
        appendByte(0xF0U | (character >> 18));
        appendTail(12);
        appendTail(6);
        appendTail(0);
    }
}

std::string toUtf8(std::u32string_view characters) {
    std::string bytes;
    bytes.reserve(characters.size());
    for (const char32_t character : characters) {
        appendUtf8(character, bytes);
    }
    return bytes;
}

}  // namespace kt::text
