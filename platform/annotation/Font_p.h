#pragma once

/// @file
/// One open font.

#include "platform/svg/Path.h"

#include <hb.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <tuple>
#include <unordered_map>

namespace kt::text {

class SimpleGlyphRules;

/// Where a font comes from, and what stands in for a style that it lacks.
struct FontSource {
    bool operator<(const FontSource& other) const {
        return std::tie(mPath, mIndex, mIsEmboldened, mMatrix) <
               std::tie(other.mPath, other.mIndex, other.mIsEmboldened, other.mMatrix);
    }

    std::string mPath;
    unsigned mIndex = 0;                                ///< face in the file; bits 16 and up: named instance + 1
    bool mIsEmboldened = false;                         ///< strokes are thickened
    std::array<double, 4> mMatrix{1.0, 0.0, 0.0, 1.0};  ///< applied to outlines: xx, xy, yx, yy
};

/// Ink box of a glyph or run in font units, y up: whole numbers, in a type that adds and compares without branches.
/// Starts empty.
struct InkBox {
    static constexpr double sInfinity = std::numeric_limits<double>::infinity();

    bool isEmpty() const { return mLeft > mRight; }
    /// Adds a box. An empty one adds nothing.
    void addBox(const InkBox& box) {
        mLeft = std::min(mLeft, box.mLeft);
        mBottom = std::min(mBottom, box.mBottom);
        mRight = std::max(mRight, box.mRight);
        mTop = std::max(mTop, box.mTop);
    }
    InkBox makeMoved(double x, double y) const { return {mLeft + x, mBottom + y, mRight + x, mTop + y}; }

    double mLeft = sInfinity;
    double mBottom = sInfinity;
    double mRight = -sInfinity;
    double mTop = -sInfinity;
};

/// Vertical metrics in ems; all positive in the usual direction.
struct FontMetrics {
    float mAscent = 0.0F;
    float mDescent = 0.0F;
    float mLineGap = 0.0F;
    float mSubscriptDrop = 0.0F;    ///< how far below the base line a subscript's base line lies
    float mSuperscriptRise = 0.0F;  ///< how far above it a superscript's lies
};

/// An open scalable font: the file is mapped and shared by everything that uses the font. Immutable for its users, who
/// may work on several threads. All positions are in font units.
class Font {
public:
    /// Null when the file cannot be read, which errno then explains, or is no usable font, when errno is 0.
    static std::shared_ptr<const Font> open(const FontSource& source);

    Font(const Font&) = delete;
    Font& operator=(const Font&) = delete;
    ~Font();

    hb_font_t* getShapingFont() const { return mShapingFont.get(); }
    hb_face_t* getFace() const { return hb_font_get_face(mShapingFont.get()); }
    const FontSource& getSource() const { return mSource; }
    unsigned getUnitsPerEm() const { return mUnitsPerEm; }
    /// How far a point moves to the right per unit of its height.
    double getSlant() const { return mSource.mMatrix[1]; }
    const FontMetrics& getMetrics() const { return mMetrics; }

    /// The glyph of a character, 0 when the font has none.
    hb_codepoint_t getGlyph(char32_t character) const;
    InkBox getInkBox(hb_codepoint_t glyph) const;
    /// The glyph's outline in font units with y down, null for a glyph without ink. Lives as long as the font.
    const svg::Path* getOutline(hb_codepoint_t glyph) const;
    /// Which glyphs are simple in text of the script; built at the first call for it.
    const SimpleGlyphRules& getSimpleGlyphRules(hb_script_t script) const;

private:
    struct FontDeleter {
        void operator()(hb_font_t* font) const { hb_font_destroy(font); }
    };
    using FontHandle = std::unique_ptr<hb_font_t, FontDeleter>;
    class OutlineReader;

    Font(FontHandle shapingFont, FontSource source);

    FontHandle mShapingFont;
    FontSource mSource;
    unsigned mUnitsPerEm;
    FontMetrics mMetrics;
    mutable std::mutex mRulesMutex;
    mutable std::map<hb_script_t, std::unique_ptr<const SimpleGlyphRules>> mRules;
    mutable std::mutex mOutlineMutex;
    mutable std::unique_ptr<OutlineReader> mOutlineReader;
    mutable std::unordered_map<hb_codepoint_t, std::unique_ptr<const svg::Path>> mOutlines;
};

}  // namespace kt::text
