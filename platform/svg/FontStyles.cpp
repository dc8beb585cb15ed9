#include "platform/encoding/Utf8.h"
#include "platform/svg/FontStyles_p.h"
#include "platform/svg/NumberFormat_p.h"
#include "platform/svg/Text.h"
#include "platform/svg/XmlText_p.h"

#include <algorithm>
#include <array>

namespace kt::svg {

namespace {

/// Longer family names are nobody's.
constexpr std::size_t sMaxFamilySize = 1000;

/// The generic family whose fonts look like the family's, as its name tells.
std::string_view findGenericFamily(std::string_view family) {
    std::string name(family);
    std::transform(name.begin(), name.end(), name.begin(), [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
    });
    const auto holds = [&name](std::string_view part) { return name.find(part) != std::string::npos; };
    constexpr std::array sMonospaced{"mono", "courier", "consol", "typewriter", "terminal", "fixed"};
    constexpr std::array sSerif{"serif",   "times",   "roman",      "georgia",     "garamond", "palatino", "cambria",
                                "bookman", "antiqua", "schoolbook", "baskerville", "mincho",   "simsun"};
    if (std::any_of(sMonospaced.begin(), sMonospaced.end(), holds)) {
        return "monospace";
    }
    // Technical lettering bears the name of a face that it does not have.
    const bool isLettering = holds("sans") || holds("romans") || holds("iso");
    return !isLettering && std::any_of(sSerif.begin(), sSerif.end(), holds) ? "serif" : "sans-serif";
}

/// The family as a quoted CSS string with a generic family to fall back on.
std::string makeFontFamily(std::string_view font) {
    std::string family;
    for (const char character : encoding::cutUtf8(font, sMaxFamilySize)) {
        if (character == '\'' || character == '\\') {
            family.push_back('\\');
        }
        const bool isControl = static_cast<unsigned char>(character) < 0x20;
        family.push_back(isControl ? ' ' : character);
    }
    const std::string_view generic = findGenericFamily(family);
    return family.empty() ? std::string(generic) : "'" + family + "'," + std::string(generic);
}

/// A, B, ..., Z, AA, AB, ...
std::string makeClassName(std::size_t index) {
    constexpr std::size_t letterCount = 26;
    std::string name;
    for (std::size_t rest = index + 1; rest > 0; rest = (rest - 1) / letterCount) {
        name.insert(name.begin(), static_cast<char>('A' + (rest - 1) % letterCount));
    }
    return name;
}

bool isStyleOf(const FontStyle& style, const Text& text, int decimals) {
    return style.mSize == text.getSize() && style.mDecimals == decimals && style.mIsBold == text.isBold() &&
           style.mIsItalic == text.isItalic() && style.mFamily == text.getFont();
}

}  // namespace

const FontStyle& FontStyles::find(const Text& text, int decimals) {
    for (const FontStyle* style : mRecent) {
        if (isStyleOf(*style, text, decimals)) {
            return *style;
        }
    }
    const FontStyle& style = add(text, decimals);
    mRecent[mNextRecent++ % mRecent.size()] = &style;
    return style;
}

const FontStyle& FontStyles::add(const Text& text, int decimals) {
    const std::array<char, 3> flags{text.isBold() ? 'b' : ' ', text.isItalic() ? 'i' : ' ',
                                    static_cast<char>(decimals)};
    std::string name(flags.data(), flags.size());
    const float size = text.getSize();
    name.append(reinterpret_cast<const char*>(&size), sizeof(size)).append(text.getFont());
    const auto [entry, isNew] = mStylesByName.try_emplace(std::move(name));
    if (isNew) {
        mStyles.push_back(
            {text.getFont(), size, decimals, text.isBold(), text.isItalic(), makeClassName(mStyles.size())});
        entry->second = &mStyles.back();
        appendRule(mStyles.back());
    }
    return *entry->second;
}

void FontStyles::appendRule(const FontStyle& style) {
    // Each rule says everything: what groups around say must not reach a text in another font.
    mRules.append(".");
    mRules.append(style.mClass);
    mRules.append("{font-family:");
    appendXmlText(mRules, makeFontFamily(style.mFamily), XmlContext::Content);
    mRules.append(";font-size:");
    mRules.commit(formatNumber(mRules.reserve(sMaxNumberLength), static_cast<double>(style.mSize), style.mDecimals));
    mRules.append(style.mIsBold ? "px;font-weight:bold" : "px;font-weight:normal");
    mRules.append(style.mIsItalic ? ";font-style:italic}\n" : ";font-style:normal}\n");
}

void FontStyles::appendElement(std::vector<std::string_view>& pieces) const {
    if (!mStyles.empty()) {
        pieces.emplace_back("<style>\n");
        mRules.appendPieces(pieces);
        pieces.emplace_back("</style>\n");
    }
}

}  // namespace kt::svg
