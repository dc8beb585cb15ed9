#pragma once

/// @file
/// The fonts that are open in this process.

#include "platform/annotation/FontStack_p.h"

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace kt::text {

/// Opens every font once per process, whatever number of converters, families and styles use it. Safe for several
/// threads.
class FontCatalog {
public:
    /// Emptied at the program's end, but never destroyed: converters and items may outlive its static objects.
    static FontCatalog& getInstance();

    /// The fonts of a family and style (bits of TextProperties::mStyle); never null.
    std::shared_ptr<const FontStack> getStack(const std::string& family, unsigned style);
    /// The open font of that source; when it cannot be opened null, and why is appended.
    std::shared_ptr<const Font> getFont(const FontSource& source, std::vector<FontProblem>& problems);
    /// Takes fonts from the folder and those below it alone, and forgets all fonts; false, and nothing is changed, when
    /// there are none.
    bool restrictTo(const std::string& folder);
    /// The configuration to look for fonts in; null: the system's. Belongs to the catalog.
    FcConfig* getConfig() const;
    /// Appends what is wrong with the configuration.
    void appendProblems(std::vector<FontProblem>& problems) const;
    /// Forgets all fonts; those still in use stay open until their last user lets them go.
    void clear();

private:
    FontCatalog();

    std::vector<FcConfig*> mConfigs;  ///< the last one counts; stacks in use may refer to the others
    std::mutex mStackMutex;
    std::map<std::pair<std::string, unsigned>, std::shared_ptr<const FontStack>> mStacks;
    std::mutex mFontMutex;
    std::map<FontSource, std::weak_ptr<const Font>> mFonts;
};

}  // namespace kt::text
