#include "platform/annotation/FontCatalog_p.h"
#include "platform/annotation/FontStack_p.h"
#include "platform/annotation/TextProperties.h"
#include "platform/system/log/ktLogObject.h"

namespace kt::text {

namespace {

const FcChar8* toFcText(const char* text) { return reinterpret_cast<const FcChar8*>(text); }

FcPattern* createRequest(FcConfig* config, const std::string& family, unsigned style) {
    FcPattern* request = FcPatternCreate();
    FcPatternAddString(request, FC_FAMILY, toFcText(family.c_str()));
    FcPatternAddInteger(request, FC_WEIGHT, (style & TextProperties::sBold) != 0 ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
    FcPatternAddInteger(request, FC_SLANT, (style & TextProperties::sItalic) != 0 ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
    FcPatternAddBool(request, FC_OUTLINE, FcTrue);
    // A fixed language: a drawing must not depend on the locale of whoever makes it.
    FcPatternAddString(request, FC_LANG, toFcText("en"));
    FcConfigSubstitute(config, request, FcMatchPattern);
    FcDefaultSubstitute(request);
    return request;
}

bool getFlag(const FcPattern* pattern, const char* object) {
    FcBool value = FcFalse;
    return FcPatternGetBool(pattern, object, 0, &value) == FcResultMatch && value == FcTrue;
}

/// Fonts whose glyphs are no plain outlines cannot be measured and drawn alike everywhere.
bool isUsable(const FcPattern* pattern) {
    return getFlag(pattern, FC_OUTLINE) && !getFlag(pattern, FC_COLOR) && !getFlag(pattern, FC_VARIABLE);
}

bool hasFamily(const FcPattern* pattern, const std::string& family) {
    FcChar8* name = nullptr;
    for (int index = 0; FcPatternGetString(pattern, FC_FAMILY, index, &name) == FcResultMatch; ++index) {
        if (FcStrCmpIgnoreCase(name, toFcText(family.c_str())) == 0) {
            return true;
        }
    }
    return false;
}

std::string getFamily(const FcPattern* pattern) {
    FcChar8* name = nullptr;
    return FcPatternGetString(pattern, FC_FAMILY, 0, &name) == FcResultMatch ? reinterpret_cast<const char*>(name) : "";
}

FontSource getSource(const FcPattern* pattern) {
    FontSource source;
    if (FcChar8* path = nullptr; FcPatternGetString(pattern, FC_FILE, 0, &path) == FcResultMatch) {
        source.mPath = reinterpret_cast<const char*>(path);
    }
    if (int index = 0; FcPatternGetInteger(pattern, FC_INDEX, 0, &index) == FcResultMatch) {
        source.mIndex = static_cast<unsigned>(index);
    }
    source.mIsEmboldened = getFlag(pattern, FC_EMBOLDEN);
    if (FcMatrix* matrix = nullptr; FcPatternGetMatrix(pattern, FC_MATRIX, 0, &matrix) == FcResultMatch) {
        source.mMatrix = {matrix->xx, matrix->xy, matrix->yx, matrix->yy};
    }
    return source;
}

bool isWithoutPicture(char32_t character) {
    return (character >= 0x200B && character <= 0x200F) || (character >= 0x202A && character <= 0x202E) ||
           (character >= 0x2060 && character <= 0x206F) || (character >= 0xFE00 && character <= 0xFE0F) ||
           character == 0xAD || character == 0x034F || character == 0xFEFF ||
           (character >= 0xE0000 && character <= 0xE0FFF);
}

/// Whether the characters can be shown: each by a glyph of its own, or composed with the one before.
bool hasAll(const FcCharSet* characters, std::u32string_view cluster) {
    for (std::size_t index = 0; index < cluster.size(); ++index) {
        if (FcCharSetHasChar(characters, cluster[index]) == FcTrue || isWithoutPicture(cluster[index])) {
            continue;
        }
        hb_codepoint_t composed = 0;
        const bool isComposed = index > 0 && hb_unicode_compose(hb_unicode_funcs_get_default(), cluster[index - 1],
                                                                cluster[index], &composed) != 0;
        if (!isComposed || FcCharSetHasChar(characters, composed) == FcFalse) {
            return false;
        }
    }
    return true;
}

}  // namespace

FontStack::FontStack(FontCatalog& catalog, const std::string& family, unsigned style)
    // Names end at a NUL for the font configuration.
    : mCatalog(catalog),
      mFamily(family.substr(0, family.find('\0'))),
      mConfig(catalog.getConfig()),
      mRequest(createRequest(mConfig, mFamily, style)) {
    catalog.appendProblems(mProblems);
}

FontStack::~FontStack() {
    for (const Entry& entry : mEntries) {
        FcPatternDestroy(entry.mPattern);
    }
    FcPatternDestroy(mRequest);
}

const Font* FontStack::getMainFont() const {
    const std::scoped_lock lock(mMutex);
    return findMainFont();
}

const Font* FontStack::findFont(std::u32string_view cluster) const {
    const std::scoped_lock lock(mMutex);
    const Font* mainFont = findMainFont();
    if (mMainFont != nullptr && hasAll(mEntries[mMainEntry].mCharacters, cluster)) {
        return mainFont;
    }
    findAllEntries();
    for (const std::u32string_view wanted : {cluster, cluster.substr(0, 1)}) {
        if (const Font* font = findFontWith(wanted); font != nullptr) {
            return font;
        }
    }
    return mainFont;
}

const Font* FontStack::findFontWith(std::u32string_view characters) const {
    for (Entry& entry : mEntries) {
        if (!hasAll(entry.mCharacters, characters)) {
            continue;
        }
        if (const Font* font = openEntry(entry); font != nullptr) {
            if (font != mMainFont) {
                tellSubstitute(entry);
            }
            return font;
        }
    }
    return nullptr;
}

std::string FontStack::getUsedFamily() const {
    const std::scoped_lock lock(mMutex);
    return findMainFont() != nullptr ? getFamily(mEntries[mMainEntry].mPattern) : std::string();
}

bool FontStack::isOfFamily() const {
    const std::scoped_lock lock(mMutex);
    return findMainFont() != nullptr && hasFamily(mEntries[mMainEntry].mPattern, mFamily);
}

FontSource FontStack::getMainSource() const {
    const std::scoped_lock lock(mMutex);
    return findMainFont() != nullptr ? mMainFont->getSource() : FontSource();
}

bool FontStack::hasProblems() const {
    const std::scoped_lock lock(mMutex);
    return !mProblems.empty();
}

void FontStack::appendProblems(std::vector<FontProblem>& problems) const {
    const std::scoped_lock lock(mMutex);
    problems.insert(problems.end(), mProblems.begin(), mProblems.end());
}

void FontStack::addEntry(FcPattern* pattern) const {
    Entry entry;
    if (isUsable(pattern) && FcPatternGetCharSet(pattern, FC_CHARSET, 0, &entry.mCharacters) == FcResultMatch) {
        FcPatternReference(pattern);
        entry.mPattern = pattern;
        mEntries.push_back(std::move(entry));
    }
}

/// The best match alone takes a third of the time for all, and many texts need no other font.
void FontStack::findFirstEntry() const {
    FcResult result = FcResultMatch;
    FcPattern* pattern = FcFontMatch(mConfig, mRequest, &result);
    if (pattern != nullptr) {
        addEntry(pattern);
        FcPatternDestroy(pattern);
    }
}

void FontStack::findAllEntries() const {
    if (mHasAllEntries) {
        return;
    }
    mHasAllEntries = true;
    FcResult result = FcResultMatch;
    FcFontSet* fonts = FcFontSort(mConfig, mRequest, FcTrue, nullptr, &result);
    if (fonts == nullptr) {
        return;
    }
    // The best match stands in front, if it is usable.
    const std::size_t known = mEntries.size();
    for (int index = 0; index < fonts->nfont; ++index) {
        if (index > 0 || known == 0) {
            addEntry(fonts->fonts[index]);
        }
    }
    FcFontSetDestroy(fonts);
}

const Font* FontStack::findMainFont() const {
    if (mMainFont != nullptr) {
        return mMainFont;
    }
    if (mEntries.empty() && !mHasAllEntries) {
        findFirstEntry();
    }
    for (std::size_t index = 0; mMainFont == nullptr; ++index) {
        if (index == mEntries.size()) {
            findAllEntries();
        }
        if (index == mEntries.size()) {
            break;
        }
        mMainFont = openEntry(mEntries[index]);
        mMainEntry = index;
    }
    if (mMainFont != nullptr && !hasFamily(mEntries[mMainEntry].mPattern, mFamily)) {
        ktLogObject(ktLog::Debug, nullptr, ktLog::msInstance, nullptr, false)
            << "Font '" << mFamily << "' is not installed, '" << getFamily(mEntries[mMainEntry].mPattern)
            << "' is used instead";
    }
    return mMainFont;
}

const Font* FontStack::openEntry(Entry& entry) const {
    if (!entry.mIsTried) {
        entry.mIsTried = true;
        FcPattern* prepared = FcFontRenderPrepare(mConfig, mRequest, entry.mPattern);
        entry.mFont = mCatalog.getFont(getSource(prepared), mProblems);
        FcPatternDestroy(prepared);
    }
    return entry.mFont.get();
}

void FontStack::tellSubstitute(Entry& entry) const {
    if (!entry.mIsTold) {
        entry.mIsTold = true;
        ktLogObject(ktLog::Debug, nullptr, ktLog::msInstance, nullptr, false)
            << "Characters that font '" << mFamily << "' lacks are taken from '" << getFamily(entry.mPattern) << "'";
    }
}

}  // namespace kt::text
