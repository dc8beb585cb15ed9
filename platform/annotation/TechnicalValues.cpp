#include "platform/annotation/LineLevels_p.h"
#include "platform/annotation/TechnicalValues_p.h"

#include <unicode/uchar.h>

#include <algorithm>

namespace kt::text {

namespace {

constexpr std::u32string_view sSuffixes = U"\u00B0%\u2030\u2031\u066A\u00B2\u00B3";
constexpr std::u32string_view sQuotes = U"'\"\u2019\u201D\u2032\u2033\u2034";
constexpr std::u32string_view sSigns = U"+\u2212\u00B1\u2213\u00D7\u00F7<>\u2264\u2265\u2248\u223C~*^\u00B7\u22C5";
constexpr std::u32string_view sHyphens = U"-\u2010\u2011\u2012\u2013";
constexpr std::u32string_view sConnectors = U"/\\\u2044|&@_=\u2260\u2261\u2014";
constexpr std::u32string_view sSeparators = U".,:;!?\u2026\u066B\u066C";

bool isOneOf(std::u32string_view characters, char32_t character) {
    return characters.find(character) != std::u32string_view::npos;
}

bool isTechnicalSymbol(char32_t character) {
    return character == '#' || character == 0xA7 || (character >= 0x2190 && character <= 0x23FF) ||
           (character >= 0x25A0 && character <= 0x25FF) || (character >= 0x27C0 && character <= 0x27EF);
}

}  // namespace

TechnicalValues::Kind TechnicalValues::getKind(char32_t character) {
    const auto codePoint = static_cast<UChar32>(character);
    if (isOneOf(sQuotes, character)) {
        return Kind::Quote;
    }
    if (isOneOf(sSuffixes, character)) {
        return Kind::Suffix;
    }
    if (isOneOf(sSigns, character)) {
        return Kind::Sign;
    }
    if (isOneOf(sHyphens, character)) {
        return Kind::Hyphen;
    }
    if (isOneOf(sConnectors, character)) {
        return Kind::Connector;
    }
    if (isOneOf(sSeparators, character)) {
        return Kind::Separator;
    }
    if (isTechnicalSymbol(character)) {
        return Kind::Prefix;
    }
    switch (u_charType(codePoint)) {
        case U_DECIMAL_DIGIT_NUMBER:
        case U_OTHER_NUMBER:
            return Kind::Digit;
        case U_FORMAT_CHAR:
            return Kind::Boundary;
        default:
            break;
    }
    switch (u_charDirection(codePoint)) {
        case U_RIGHT_TO_LEFT:
        case U_RIGHT_TO_LEFT_ARABIC:
            return Kind::RightToLeft;
        case U_LEFT_TO_RIGHT:
            return Kind::Letter;
        default:
            // Punctuation of right-to-left scripts ends values as their letters do.
            return LineLevels::isBidiCharacter(character) ? Kind::RightToLeft : Kind::Blank;
    }
}

void TechnicalValues::findKinds(std::u32string_view line, const BracketPairs& brackets) {
    mLine = line;
    mKinds.resize(line.size());
    for (std::size_t position = 0; position < line.size(); ++position) {
        const char32_t character = line[position];
        if (position > 0 && u_charDirection(static_cast<UChar32>(character)) == U_DIR_NON_SPACING_MARK) {
            mKinds[position] = mKinds[position - 1];
        } else if (BracketPairs::isBracket(character)) {
            mKinds[position] = brackets.getPartner(position) == BracketPairs::sNone ? Kind::Boundary : Kind::Bracket;
        } else {
            mKinds[position] = getKind(character);
        }
    }
}

void TechnicalValues::find(std::u32string_view line, const BracketPairs& brackets) {
    mRanges.clear();
    findKinds(line, brackets);
    const auto endsStretch = [](Kind kind) { return kind == Kind::RightToLeft || kind == Kind::Boundary; };
    for (std::size_t start = 0; start < line.size();) {
        const auto first = mKinds.begin() + static_cast<std::ptrdiff_t>(start);
        const auto end = static_cast<std::size_t>(std::find_if(first, mKinds.end(), endsStretch) - mKinds.begin());
        // Brackets around letters of both directions belong to the line.
        std::size_t partStart = start;
        for (std::size_t position = start; position < end; ++position) {
            const std::size_t partner = brackets.getPartner(position);
            if (partner != BracketPairs::sNone && (partner < start || partner >= end)) {
                addStretch({partStart, position});
                partStart = position + 1;
            }
        }
        addStretch({partStart, end});
        start = end + 1;
    }
}

void TechnicalValues::addStretch(Range stretch) {
    Range word = findWord(stretch.mStart, stretch.mEnd);
    std::size_t valueStart = word.mStart;
    while (word.mEnd < stretch.mEnd) {
        const Range next = findWord(word.mEnd, stretch.mEnd);
        if (areApart(word, next)) {
            addValue({valueStart, word.mEnd});
            valueStart = next.mStart;
        }
        word = next;
    }
    addValue({valueStart, word.mEnd});
}

/// The first word at or behind start; empty at the end when there is none.
TechnicalValues::Range TechnicalValues::findWord(std::size_t start, std::size_t end) const {
    while (start < end && mKinds[start] == Kind::Blank) {
        ++start;
    }
    std::size_t wordEnd = start;
    while (wordEnd < end && mKinds[wordEnd] != Kind::Blank) {
        ++wordEnd;
    }
    return {start, wordEnd};
}

/// Whether the words are two values of a list rather than parts of one.
bool TechnicalValues::areApart(const Range& word, const Range& next) const {
    if (next.mStart == next.mEnd) {
        return false;
    }
    const Kind before = getEndKind(word);
    Kind behind = mKinds[next.mStart];
    if (behind == Kind::Separator && next.mStart + 1 < next.mEnd) {
        behind = mKinds[next.mStart + 1];
    }
    const bool isValue = before == Kind::Digit || before == Kind::Suffix || before == Kind::Quote;
    if (!isValue || (behind != Kind::Digit && behind != Kind::Prefix)) {
        return false;
    }
    // Feet and inches, degrees and minutes, whole numbers and fractions.
    const bool isSubdivided =
        (before == Kind::Quote || mLine[word.mEnd - 1] == 0xB0) && getEndKind(next) == Kind::Quote;
    return !isSubdivided && !(isFraction(next) && before != Kind::Suffix);
}

/// Kind of the word's last character that is no punctuation.
TechnicalValues::Kind TechnicalValues::getEndKind(const Range& word) const {
    std::size_t end = word.mEnd;
    while (end - 1 > word.mStart && mKinds[end - 1] == Kind::Separator) {
        --end;
    }
    return mKinds[end - 1];
}

bool TechnicalValues::isFraction(const Range& word) const {
    const auto isFractionCharacter = [](char32_t character) {
        return character == '/' || character == 0x2044 || u_charType(static_cast<UChar32>(character)) == U_OTHER_NUMBER;
    };
    return std::ranges::any_of(mLine.substr(word.mStart, word.mEnd - word.mStart), isFractionCharacter);
}

void TechnicalValues::addValue(Range value) {
    char32_t openingQuote = 0;
    while (value.mStart < value.mEnd && isDroppedAtStart(value)) {
        openingQuote = mKinds[value.mStart] == Kind::Quote ? mLine[value.mStart] : 0;
        ++value.mStart;
    }
    while (value.mStart < value.mEnd && (isDroppedAtEnd(value) || mLine[value.mEnd - 1] == openingQuote)) {
        --value.mEnd;
    }
    const auto first = mKinds.begin();
    const auto isDigit = [](Kind kind) { return kind == Kind::Digit; };
    if (std::any_of(first + static_cast<std::ptrdiff_t>(value.mStart), first + static_cast<std::ptrdiff_t>(value.mEnd),
                    isDigit)) {
        mRanges.push_back(value);
    }
}

bool TechnicalValues::isDroppedAtStart(const Range& value) const {
    const bool isAttached = value.mStart > 0 && mKinds[value.mStart - 1] == Kind::RightToLeft;
    const Kind next = value.mStart + 1 < value.mEnd ? mKinds[value.mStart + 1] : Kind::Blank;
    switch (mKinds[value.mStart]) {
        case Kind::Blank:
        case Kind::Quote:
        case Kind::Connector:
            return true;
        case Kind::Separator:
            return isAttached || next != Kind::Digit;
        case Kind::Hyphen:
            return isAttached || next == Kind::Blank;
        default:
            return false;
    }
}

bool TechnicalValues::isDroppedAtEnd(const Range& value) const {
    const std::size_t last = value.mEnd - 1;
    const bool isAttached = value.mEnd < mKinds.size() && mKinds[value.mEnd] == Kind::RightToLeft;
    const bool isFree = last > value.mStart && mKinds[last - 1] == Kind::Blank;
    switch (mKinds[last]) {
        case Kind::Blank:
        case Kind::Separator:
        case Kind::Connector:
            return true;
        case Kind::Hyphen:
        case Kind::Sign:
            return isAttached || isFree;
        default:
            return false;
    }
}

}  // namespace kt::text
