#pragma once

/// @file
/// What HarfBuzz itself makes of a text: the measure for all widths in these tests.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

struct hb_font_t;

namespace kt::test {

/// A font of the system, opened without the code under test.
class ReferenceFont {
public:
    /// @param pattern  family and style as fontconfig writes them: "Liberation Sans:bold".
    explicit ReferenceFont(const std::string& pattern);
    ReferenceFont(const ReferenceFont&) = delete;
    ReferenceFont& operator=(const ReferenceFont&) = delete;
    ~ReferenceFont();

    /// Whether the font is of the family asked for rather than a substitute.
    bool isInstalled() const { return mIsInstalled; }
    hb_font_t* getFont() const { return mFont; }
    double getUnitsPerEm() const;
    /// Whether the glyph has no outline.
    bool isBlank(std::uint32_t glyph) const;

private:
    bool mIsInstalled = false;
    hb_font_t* mFont = nullptr;
};

struct ReferenceGlyph {
    std::uint32_t mGlyph;
    std::int64_t mX;
    std::int64_t mY;
};

/// A shaped text in font units.
struct ReferenceRun {
    std::vector<ReferenceGlyph> mGlyphs;
    std::int64_t mAdvance = 0;
};

/// Shapes a text of one script and direction, both found by HarfBuzz.
ReferenceRun shapeReference(const ReferenceFont& font, std::string_view text);

}  // namespace kt::test
