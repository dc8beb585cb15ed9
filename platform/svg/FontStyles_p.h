#pragma once

/// @file
/// Fonts of a file.

#include "platform/svg/TextBuffer_p.h"

#include <array>
#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kt::svg {

class Text;

/// One family, size, weight and style.
struct FontStyle {
    std::string mFamily;
    float mSize = -1.0F;
    int mDecimals = 0;  ///< with which the size is written
    bool mIsBold = false;
    bool mIsItalic = false;
    std::string mClass;
};

/// Collects the fonts that a file uses; each is spelt once, as a rule for the classes A, B, ..., Z, AA, ... in the
/// order of first use.
class FontStyles {
public:
    /// The style of the text's font; always the same object for the same font.
    const FontStyle& find(const Text& text, int decimals);

    /// Appends the rules as an element, unless there are none. The pieces are valid until a font is added.
    void appendElement(std::vector<std::string_view>& pieces) const;

private:
    const FontStyle& add(const Text& text, int decimals);
    void appendRule(const FontStyle& style);

    std::deque<FontStyle> mStyles;
    std::unordered_map<std::string, const FontStyle*> mStylesByName;
    static inline const FontStyle sNoStyle{};
    /// Those of late: the texts of a drawing take turns with a few.
    std::array<const FontStyle*, 8> mRecent{&sNoStyle, &sNoStyle, &sNoStyle, &sNoStyle,
                                            &sNoStyle, &sNoStyle, &sNoStyle, &sNoStyle};
    std::size_t mNextRecent = 0;
    TextBuffer mRules;
};

}  // namespace kt::svg
