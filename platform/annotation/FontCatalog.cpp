#include "platform/annotation/FontCatalog_p.h"
#include "platform/annotation/TextProperties.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <system_error>

namespace kt::text {

namespace {

/// Far more families than a set of documents has, unless it is made to exhaust memory.
constexpr std::size_t sMaxStackCount = 1024;

constexpr const char* sLanguageVariable = "FC_LANG";

/// The font configuration adds the languages of the environment to every request, and keeps those that it finds at
/// first. It shall find one, so that fonts do not depend on the locale.
void fixLanguages() {
    const char* former = std::getenv(sLanguageVariable);
    const std::string formerLanguages = former != nullptr ? former : "";
    setenv(sLanguageVariable, "en", 1);
    FcStrSetDestroy(FcGetDefaultLangs());
    if (former != nullptr) {
        setenv(sLanguageVariable, formerLanguages.c_str(), 1);
    } else {
        unsetenv(sLanguageVariable);
    }
}

/// Families that stand in for those that documents name most and for missing ones, and what is done where a style is
/// missing. Nothing here comes from the machine: the same folder gives the same fonts everywhere.
constexpr std::string_view sFolderRules =
    R"(<alias binding="same"><family>Arial</family><accept><family>Liberation Sans</family></accept></alias>
<alias binding="same"><family>Helvetica</family><accept><family>Liberation Sans</family></accept></alias>
<alias binding="same"><family>Times New Roman</family><accept><family>Liberation Serif</family></accept></alias>
<alias binding="same"><family>Courier New</family><accept><family>Liberation Mono</family></accept></alias>
<match target="pattern"><test qual="all" name="family" compare="not_eq"><string>sans-serif</string></test>
<edit name="family" mode="append_last"><string>sans-serif</string></edit></match>
<alias><family>sans-serif</family><prefer><family>Liberation Sans</family><family>DejaVu Sans</family>
<family>Noto Sans</family></prefer></alias>
<match target="font"><test name="slant"><const>roman</const></test>
<test target="pattern" name="slant" compare="not_eq"><const>roman</const></test>
<edit name="matrix" mode="assign"><times><name>matrix</name><matrix><double>1</double><double>0.2</double>
<double>0</double><double>1</double></matrix></times></edit></match>
<match target="font"><test name="weight" compare="less_eq"><const>medium</const></test>
<test target="pattern" name="weight" compare="more_eq"><const>bold</const></test>
<edit name="embolden" mode="assign"><bool>true</bool></edit></match>)";

std::string makeFolderRules(const std::string& folder) {
    std::string rules = "<?xml version=\"1.0\"?><fontconfig><cachedir prefix=\"xdg\">fontconfig</cachedir><dir>";
    for (const char character : folder) {
        switch (character) {
            case '&':
                rules += "&amp;";
                break;
            case '<':
                rules += "&lt;";
                break;
            default:
                rules += character;
        }
    }
    return rules.append("</dir>").append(sFolderRules).append("</fontconfig>");
}

/// The font library goes on with rules of its own when it cannot read the system's.
void appendConfigurationProblem(std::vector<FontProblem>& problems) {
    FcChar8* name = FcConfigFilename(nullptr);
    const std::string path = name != nullptr ? reinterpret_cast<const char*>(name) : "";
    FcStrFree(name);
    std::FILE* file = path.empty() ? nullptr : std::fopen(path.c_str(), "re");
    if (file != nullptr) {
        std::fclose(file);
        return;
    }
    const std::string reason = path.empty() ? "" : std::generic_category().message(errno);
    problems.push_back({FontProblem::Kind::NoConfiguration, path, reason});
}

bool hasFonts(FcConfig* config) {
    const FcFontSet* fonts = FcConfigGetFonts(config, FcSetSystem);
    return fonts != nullptr && fonts->nfont > 0;
}

}  // namespace

FontCatalog::FontCatalog() { fixLanguages(); }

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
    // What kept a font from being used may be over.
    if (stack == nullptr || stack->hasProblems()) {
        stack = std::make_shared<FontStack>(*this, family, usedStyle);
    }
    return stack;
}

std::shared_ptr<const Font> FontCatalog::getFont(const FontSource& source, std::vector<FontProblem>& problems) {
    const std::scoped_lock lock(mFontMutex);
    std::weak_ptr<const Font>& known = mFonts[source];
    std::shared_ptr<const Font> font = known.lock();
    if (font == nullptr) {
        font = Font::open(source);
        const int error = errno;
        known = font;
        if (font == nullptr) {
            const bool isDamaged = error == 0;
            problems.push_back({isDamaged ? FontProblem::Kind::Damaged : FontProblem::Kind::CannotOpen, source.mPath,
                                isDamaged ? "" : std::generic_category().message(error)});
        }
    }
    return font;
}

bool FontCatalog::restrictTo(const std::string& folder) {
    FcConfig* config = FcConfigCreate();
    const std::string rules = makeFolderRules(folder);
    const bool isUsable =
        config != nullptr &&
        FcConfigParseAndLoadFromMemory(config, reinterpret_cast<const FcChar8*>(rules.c_str()), FcFalse) == FcTrue &&
        FcConfigBuildFonts(config) == FcTrue && hasFonts(config);
    if (!isUsable) {
        if (config != nullptr) {
            FcConfigDestroy(config);
        }
        return false;
    }
    clear();
    const std::scoped_lock lock(mStackMutex);
    mConfigs.push_back(config);
    return true;
}

void FontCatalog::appendProblems(std::vector<FontProblem>& problems) const {
    FcConfig* config = getConfig();
    FcConfig* used = config != nullptr ? config : FcConfigGetCurrent();
    if (used == nullptr || !hasFonts(used)) {
        problems.push_back({FontProblem::Kind::NoFont, "", ""});
    }
    if (config == nullptr) {
        appendConfigurationProblem(problems);
    }
}

FcConfig* FontCatalog::getConfig() const { return mConfigs.empty() ? nullptr : mConfigs.back(); }

void FontCatalog::clear() {
    const std::scoped_lock lock(mStackMutex);
    mStacks.clear();
}

}  // namespace kt::text
