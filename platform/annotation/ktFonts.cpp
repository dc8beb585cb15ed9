#include "platform/annotation/ktFonts.h"

#include "platform/annotation/FontCatalog_p.h"

namespace kt {

ktFontChoice findFont(const std::string& family, unsigned style) {
    const auto stack = text::FontCatalog::getInstance().getStack(family, style);
    const text::FontSource source = stack->getMainSource();
    ktFontChoice choice;
    choice.mFamily = stack->getUsedFamily();
    choice.mFile = source.mPath;
    choice.mIndex = source.mIndex;
    choice.mIsOfFamily = stack->isOfFamily();
    choice.mIsSynthetic = source.mIsEmboldened || source.mMatrix != text::FontSource().mMatrix;
    return choice;
}

bool restrictFontsTo(const std::string& folder) { return text::FontCatalog::getInstance().restrictTo(folder); }

}  // namespace kt
