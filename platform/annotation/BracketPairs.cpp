#include "platform/annotation/BracketPairs_p.h"

#include <unicode/uchar.h>

namespace kt::text {

namespace {

constexpr std::size_t sMaxOpenCount = 63;
constexpr std::size_t sMaxPairCount = 256;

UBidiPairedBracketType getBracketType(char32_t character) {
    return static_cast<UBidiPairedBracketType>(
        u_getIntPropertyValue(static_cast<UChar32>(character), UCHAR_BIDI_PAIRED_BRACKET_TYPE));
}

/// The angle brackets exist twice.
char32_t unifyBracket(char32_t character) {
    return character == 0x2329 ? 0x3008 : (character == 0x232A ? 0x3009 : character);
}

bool opensIsolate(char32_t character) { return character >= 0x2066 && character <= 0x2068; }
bool closesIsolate(char32_t character) { return character == 0x2069; }

}  // namespace

bool BracketPairs::isBracket(char32_t character) { return getBracketType(character) != U_BPT_NONE; }

std::size_t BracketPairs::getPartner(std::size_t position) const {
    return mPartners.empty() || mPartners[position] == 0 ? sNone : mPartners[position] - 1;
}

void BracketPairs::find(std::u32string_view line) {
    mPartners.clear();
    mOpenings.clear();
    mIsolateStarts.clear();
    mPairCount = 0;
    for (std::size_t position = 0; position < line.size(); ++position) {
        const char32_t character = line[position];
        if (opensIsolate(character)) {
            mIsolateStarts.push_back(mOpenings.size());
        } else if (closesIsolate(character)) {
            leaveIsolate();
        } else if (const UBidiPairedBracketType type = getBracketType(character); type == U_BPT_OPEN) {
            mPartners.resize(line.size());
            if (mOpenings.size() - getIsolateStart() < sMaxOpenCount && mPairCount < sMaxPairCount) {
                const UChar32 closing = u_getBidiPairedBracket(static_cast<UChar32>(character));
                mOpenings.push_back({unifyBracket(static_cast<char32_t>(closing)), position});
            }
        } else if (type == U_BPT_CLOSE) {
            close(unifyBracket(character), position);
        }
    }
}

void BracketPairs::close(char32_t character, std::size_t position) {
    for (std::size_t index = mOpenings.size(); index > getIsolateStart(); --index) {
        const Opening& opening = mOpenings[index - 1];
        if (opening.mClosing == character) {
            mPartners[opening.mPosition] = static_cast<std::uint32_t>(position + 1);
            mPartners[position] = static_cast<std::uint32_t>(opening.mPosition + 1);
            mOpenings.resize(index - 1);
            mPairCount = mOpenings.empty() ? 0 : mPairCount + 1;
            return;
        }
    }
}

void BracketPairs::leaveIsolate() {
    if (!mIsolateStarts.empty()) {
        mOpenings.resize(mIsolateStarts.back());
        mIsolateStarts.pop_back();
    }
}

}  // namespace kt::text
