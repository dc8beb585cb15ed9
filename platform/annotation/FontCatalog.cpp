#include "platform/annotation/FontCatalog_p.h"
#include "platform/annotation/TextProperties.h"

#include <cstdlib>

namespace kt::text {

namespace {

/// Far more families than a set of documents has, unless it is made to exhaust memory.
constexpr std::size_t sMaxStackCount = 1024;

}  // namespace

FontCatalog& FontCatalog::getInstance() {
    static FontCatalog* const sInstance = [] {
        // Leak checkers do not see what the font configuration's patterns own, so nothing is left to them.
        std::atexit([] { getInstance().clear(); });
        return new FontCatalog;
    }();
    return *sInstance;
}

std::shared_ptr<const FontStack> FontCatalog::getStack(const std::string& family, unsigned style) {
    const unsigned usedStyle = style & (TextProperties::sBold | TextProperties::sItalic);
    const std::scoped_lock lock(mStackMutex);
    if (mStacks.size() > sMaxStackCount) {
        mStacks.clear();
    }
    std::shared_ptr<const FontStack>& stack = mStacks[{family, usedStyle}];
    if (stack == nullptr) {
        stack = std::make_shared<FontStack>(*this, family, usedStyle);
    }
    return stack;
}

std::shared_ptr<const Font> FontCatalog::getFont(const FontSource& source) {
    const std::scoped_lock lock(mFontMutex);
    std::weak_ptr<const Font>& known = mFonts[source];
    std::shared_ptr<const Font> font = known.lock();
    if (font == nullptr) {
        font = Font::open(source);
        known = font;
    }
    return font;
}

void FontCatalog::clear() {
    const std::scoped_lock lock(mStackMutex);
    mStacks.clear();
}

}  // namespace kt::text
