#pragma once

/// @file
/// The fonts that serve one family and style.

#include "platform/annotation/FontProblem.h"
#include "platform/annotation/Font_p.h"

#include <fontconfig/fontconfig.h>

#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace kt::text {

class FontCatalog;

/// The font of a family and style, followed by those that help out for characters that it lacks, in the order that the
/// system's font configuration gives. Fonts are looked for and opened when they are first needed, and stay open as long
/// as the stack. Safe for several threads.
class FontStack {
public:
    /// @param style  bits of TextProperties::mStyle.
    FontStack(FontCatalog& catalog, const std::string& family, unsigned style);
    FontStack(const FontStack&) = delete;
    FontStack& operator=(const FontStack&) = delete;
    ~FontStack();

    /// The font that stands for the family; null when the system has no usable font at all.
    const Font* getMainFont() const;
    /// The first font that has all characters of the cluster, else the first that has its base character, else the main
    /// font. Characters without a picture of their own (joiners, variation selectors) do not count.
    const Font* findFont(std::u32string_view cluster) const;
    /// The family that stands for the one asked for; empty when there is none.
    std::string getUsedFamily() const;
    /// Whether that is the one asked for.
    bool isOfFamily() const;
    /// Where the main font comes from.
    FontSource getMainSource() const;
    bool hasProblems() const;
    /// Appends what kept fonts from being used, so far.
    void appendProblems(std::vector<FontProblem>& problems) const;

private:
    struct Entry {
        FcPattern* mPattern = nullptr;
        FcCharSet* mCharacters = nullptr;  ///< belongs to the pattern
        std::shared_ptr<const Font> mFont;
        bool mIsTried = false;
        bool mIsTold = false;
    };

    void addEntry(FcPattern* pattern) const;
    void findFirstEntry() const;
    void findAllEntries() const;
    const Font* findFontWith(std::u32string_view characters) const;
    const Font* openEntry(Entry& entry) const;
    const Font* findMainFont() const;
    void tellSubstitute(Entry& entry) const;

    FontCatalog& mCatalog;
    std::string mFamily;
    FcConfig* mConfig;  ///< null: the system's
    FcPattern* mRequest;
    mutable std::mutex mMutex;
    mutable std::vector<Entry> mEntries;
    mutable bool mHasAllEntries = false;
    mutable std::size_t mMainEntry = 0;
    mutable const Font* mMainFont = nullptr;
    mutable std::vector<FontProblem> mProblems;
};

}  // namespace kt::text
