#pragma once

/// @file
/// Directions of a line's characters.

#include "platform/annotation/BracketPairs_p.h"
#include "platform/annotation/TechnicalValues_p.h"

#include <unicode/ubidi.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kt::text {

/// Finds the embedding levels of lines by the Unicode bidirectional algorithm, with technical values as isolates from
/// left to right. Time and memory are linear in the line's length, whatever it holds. For one thread.
class LineLevels {
public:
    /// Whether the character can make any level of its line other than 0.
    static bool isBidiCharacter(char32_t character);

    /// Finds the levels of all characters; false when memory does not suffice.
    bool find(std::u32string_view line);

    /// Direction of the whole line, from its first strong character.
    bool isRightToLeft() const { return mIsRightToLeft; }
    /// Odd levels run from right to left.
    int getLevel(std::size_t position) const { return mLevels[position]; }

private:
    struct BidiDeleter {
        void operator()(UBiDi* bidi) const { ubidi_close(bidi); }
    };

    /// The line as the algorithm is to see it.
    void makeText(std::u32string_view line);
    bool resolve(std::u32string_view line);

    std::unique_ptr<UBiDi, BidiDeleter> mBidi;  ///< made for the first line that needs it
    BracketPairs mBrackets;
    TechnicalValues mValues;
    std::u16string mText;
    std::vector<std::uint8_t> mLevels;
    bool mIsRightToLeft = false;
};

}  // namespace kt::text
