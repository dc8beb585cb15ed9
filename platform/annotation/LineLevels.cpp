#include "platform/annotation/LineLevels_p.h"

#include <unicode/uchar.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace kt::text {

namespace {

constexpr char16_t sIsolateStart = 0x2066;
constexpr char16_t sIsolateEnd = 0x2069;
/// Stands for a bracket without partner: neutral, too, but not looked for by the algorithm, whose search for partners
/// takes the square of their number.
constexpr char16_t sNeutral = u'!';

UCharDirection getClass(char32_t character) { return u_charDirection(static_cast<UChar32>(character)); }

/// Characters that the algorithm takes out before it finds levels.
bool isWithoutLevel(char32_t character) {
    switch (getClass(character)) {
        case U_LEFT_TO_RIGHT_EMBEDDING:
        case U_RIGHT_TO_LEFT_EMBEDDING:
        case U_LEFT_TO_RIGHT_OVERRIDE:
        case U_RIGHT_TO_LEFT_OVERRIDE:
        case U_POP_DIRECTIONAL_FORMAT:
        case U_BOUNDARY_NEUTRAL:
            return true;
        default:
            return false;
    }
}

/// Whether the line's direction is chosen by its characters alone.
bool hasOwnControls(std::u32string_view line) {
    return std::ranges::any_of(line, [](char32_t character) {
        return (character >= 0x202A && character <= 0x202E) || (character >= 0x2066 && character <= 0x2069);
    });
}

UBiDiLevel getLevelOfFirstStrong(std::u32string_view line) {
    for (const char32_t character : line) {
        switch (getClass(character)) {
            case U_LEFT_TO_RIGHT:
                return UBIDI_LTR;
            case U_RIGHT_TO_LEFT:
            case U_RIGHT_TO_LEFT_ARABIC:
                return UBIDI_RTL;
            default:
                break;
        }
    }
    return UBIDI_LTR;
}

}  // namespace

bool LineLevels::isBidiCharacter(char32_t character) {
    if (character < 0x590) {
        return false;
    }
    constexpr std::pair<char32_t, char32_t> sRanges[] = {
        {0x590, 0x8FF},   {0x200E, 0x200F}, {0x202A, 0x202E},   {0x2066, 0x2069},
        {0xFB1D, 0xFDFF}, {0xFE70, 0xFEFF}, {0x10800, 0x10FFF}, {0x1E800, 0x1EFFF},
    };
    return std::ranges::any_of(
        sRanges, [character](const auto& range) { return character >= range.first && character <= range.second; });
}

bool LineLevels::find(std::u32string_view line) {
    mIsRightToLeft = false;
    mLevels.assign(line.size(), 0);
    // The algorithm counts UTF-16 units, and those of the isolates' ends.
    constexpr std::size_t maxLength = std::numeric_limits<std::int32_t>::max() / 4;
    return std::ranges::none_of(line, isBidiCharacter) || (line.size() <= maxLength && resolve(line));
}

bool LineLevels::resolve(std::u32string_view line) {
    if (mBidi == nullptr) {
        mBidi.reset(ubidi_open());
    }
    mBrackets.find(line);
    const bool isLeftToItself = hasOwnControls(line);
    if (isLeftToItself) {
        mValues.clear();
    } else {
        mValues.find(line, mBrackets);
    }
    makeText(line);
    // The algorithm would skip the letters of isolates.
    const UBiDiLevel lineLevel = isLeftToItself ? UBIDI_DEFAULT_LTR : getLevelOfFirstStrong(line);
    UErrorCode error = U_ZERO_ERROR;
    ubidi_setPara(mBidi.get(), mText.data(), static_cast<std::int32_t>(mText.size()), lineLevel, nullptr, &error);
    const UBiDiLevel* levels = ubidi_getLevels(mBidi.get(), &error);
    if (U_FAILURE(error) != 0) {
        return false;
    }
    const UBiDiLevel paragraphLevel = ubidi_getParaLevel(mBidi.get());
    mIsRightToLeft = (paragraphLevel & 1U) != 0;

    std::uint8_t last = paragraphLevel;
    auto value = mValues.getRanges().begin();
    const auto valuesEnd = mValues.getRanges().end();
    for (std::size_t position = 0; position < line.size(); ++position) {
        if (value != valuesEnd && position == value->mStart) {
            // All of a value runs from left to right: it gets the next even level, or stays at one.
            last = static_cast<std::uint8_t>(*levels + (*levels & 1U));
            std::fill_n(mLevels.begin() + static_cast<std::ptrdiff_t>(position), value->mEnd - position, last);
            for (; position + 1 < value->mEnd; ++position) {
                levels += U16_LENGTH(line[position]);
            }
            levels += U16_LENGTH(line[position]) + 2;
            ++value;
            continue;
        }
        if (!isWithoutLevel(line[position])) {
            last = *levels;
        }
        mLevels[position] = last;
        levels += U16_LENGTH(line[position]);
    }
    return true;
}

void LineLevels::makeText(std::u32string_view line) {
    mText.clear();
    auto value = mValues.getRanges().begin();
    const auto valuesEnd = mValues.getRanges().end();
    for (std::size_t position = 0; position < line.size(); ++position) {
        if (value != valuesEnd && position == value->mStart) {
            mText.push_back(sIsolateStart);
        }
        const char32_t character = line[position];
        if (BracketPairs::isBracket(character) && mBrackets.getPartner(position) == BracketPairs::sNone) {
            mText.push_back(sNeutral);
        } else if (character < 0x10000) {
            mText.push_back(static_cast<char16_t>(character));
        } else {
            mText.push_back(U16_LEAD(character));
            mText.push_back(U16_TRAIL(character));
        }
        if (value != valuesEnd && position + 1 == value->mEnd) {
            mText.push_back(sIsolateEnd);
            ++value;
        }
    }
}

}  // namespace kt::text
