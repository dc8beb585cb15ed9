#pragma once

/// @file
/// Values that read from left to right in any line.

#include "platform/annotation/BracketPairs_p.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace kt::text {

/// Finds the technical values of a line with right-to-left letters: dimensions with their tolerances, threads, angles,
/// scales. The rule stands at TextSegmentToSvgConverter.
class TechnicalValues {
public:
    struct Range {
        std::size_t mStart;
        std::size_t mEnd;
    };

    /// @param brackets  of the same line.
    void find(std::u32string_view line, const BracketPairs& brackets);
    void clear() { mRanges.clear(); }

    /// In order, apart from each other, never empty.
    const std::vector<Range>& getRanges() const { return mRanges; }

private:
    /// What a character can be within a value.
    enum class Kind : std::uint8_t {
        RightToLeft,
        Boundary,  ///< ends every value: brackets without partner, format characters
        Blank,     ///< or a picture without technical meaning
        Digit,
        Letter,
        Prefix,     ///< begins a value: diameter, depth
        Suffix,     ///< ends one: degree, inch, percent
        Quote,      ///< foot and inch, or quotation marks around a value
        Sign,       ///< belongs to the value behind it: plus-minus, less than
        Hyphen,     ///< sign, range or dash
        Connector,  ///< between parts of a value: slash, bar, equals
        Separator,  ///< within a number, else the line's own punctuation
        Bracket
    };

    static Kind getKind(char32_t character);
    void findKinds(std::u32string_view line, const BracketPairs& brackets);
    Kind getKindAt(std::size_t position) const { return mKinds[position]; }

    void addStretch(Range stretch);
    Range findWord(std::size_t start, std::size_t end) const;
    bool areApart(const Range& word, const Range& next) const;
    Kind getEndKind(const Range& word) const;
    bool isFraction(const Range& word) const;
    void addValue(Range value);
    bool isDroppedAtStart(const Range& value) const;
    bool isDroppedAtEnd(const Range& value) const;

    std::u32string_view mLine;
    std::vector<Kind> mKinds;
    std::vector<Range> mRanges;
};

}  // namespace kt::text
