#pragma once

/// @file
/// What HarfBuzz itself makes of a text: the measure for all widths in these tests.

#include <fontconfig/fontconfig.h>
#include <hb.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kt::test {

/// A font of the system, opened without the code under test.
class ReferenceFont {
public:
    /// @param pattern  family and style as fontconfig writes them: "Liberation Sans:bold".
    explicit ReferenceFont(const std::string& pattern) {
        FcPattern* request = FcNameParse(reinterpret_cast<const FcChar8*>(pattern.c_str()));
        FcConfigSubstitute(nullptr, request, FcMatchPattern);
        FcDefaultSubstitute(request);
        FcResult result = FcResultNoMatch;
        FcPattern* match = FcFontMatch(nullptr, request, &result);
        FcChar8* family = nullptr;
        FcPatternGetString(match, FC_FAMILY, 0, &family);
        mIsInstalled = pattern.substr(0, pattern.find(':')) == reinterpret_cast<const char*>(family);
        open(match);
        FcPatternDestroy(match);
        FcPatternDestroy(request);
    }
    explicit ReferenceFont(const FcPattern* installed) : mIsInstalled(true) { open(installed); }
    ReferenceFont(const ReferenceFont&) = delete;
    ReferenceFont& operator=(const ReferenceFont&) = delete;
    ~ReferenceFont() { hb_font_destroy(mFont); }

    /// Whether the font is of the family asked for rather than a substitute.
    bool isInstalled() const { return mIsInstalled; }
    hb_font_t* getFont() const { return mFont; }
    double getUnitsPerEm() const { return hb_face_get_upem(hb_font_get_face(mFont)); }
    /// Whether the glyph has no outline.
    bool isBlank(std::uint32_t glyph) const {
        hb_glyph_extents_t extents{};
        return hb_font_get_glyph_extents(mFont, glyph, &extents) == 0 || extents.width == 0;
    }

private:
    void open(const FcPattern* match) {
        FcChar8* path = nullptr;
        int index = 0;
        FcPatternGetString(match, FC_FILE, 0, &path);
        FcPatternGetInteger(match, FC_INDEX, 0, &index);
        hb_blob_t* blob = hb_blob_create_from_file(reinterpret_cast<const char*>(path));
        hb_face_t* face = hb_face_create(blob, static_cast<unsigned>(index) & 0xFFFFU);
        mFont = hb_font_create(face);
        hb_face_destroy(face);
        hb_blob_destroy(blob);
    }

    bool mIsInstalled = false;
    hb_font_t* mFont = nullptr;
};

/// The fonts that show the characters of a family, in the system's order.
class ReferenceFonts {
public:
    explicit ReferenceFonts(const std::string& family) {
        FcPattern* request = FcNameParse(reinterpret_cast<const FcChar8*>(family.c_str()));
        FcPatternAddBool(request, FC_OUTLINE, FcTrue);
        FcPatternAddString(request, FC_LANG, reinterpret_cast<const FcChar8*>("en"));
        FcPatternAddInteger(request, FC_WEIGHT, FC_WEIGHT_REGULAR);
        FcPatternAddInteger(request, FC_SLANT, FC_SLANT_ROMAN);
        FcConfigSubstitute(nullptr, request, FcMatchPattern);
        FcDefaultSubstitute(request);
        FcResult result = FcResultNoMatch;
        mFonts = FcFontSort(nullptr, request, FcTrue, nullptr, &result);
        FcPatternDestroy(request);
    }
    ReferenceFonts(const ReferenceFonts&) = delete;
    ReferenceFonts& operator=(const ReferenceFonts&) = delete;
    ~ReferenceFonts() { FcFontSetDestroy(mFonts); }

    /// Null when none has the character.
    const ReferenceFont* find(char32_t character) {
        for (int index = 0; index < mFonts->nfont; ++index) {
            FcPattern* pattern = mFonts->fonts[index];
            FcCharSet* characters = nullptr;
            FcBool isColored = FcFalse;
            FcBool isVariable = FcFalse;
            FcPatternGetBool(pattern, FC_COLOR, 0, &isColored);
            FcPatternGetBool(pattern, FC_VARIABLE, 0, &isVariable);
            FcPatternGetCharSet(pattern, FC_CHARSET, 0, &characters);
            if (isColored == FcFalse && isVariable == FcFalse && FcCharSetHasChar(characters, character) != FcFalse) {
                std::unique_ptr<ReferenceFont>& font = mOpenFonts[index];
                font = font != nullptr ? std::move(font) : std::make_unique<ReferenceFont>(pattern);
                return font.get();
            }
        }
        return nullptr;
    }

    /// Filled by the test: which outlines a font's glyphs have been seen to have.
    std::map<std::pair<const ReferenceFont*, std::uint32_t>, const void*> mOutlines;

private:
    FcFontSet* mFonts;
    std::map<int, std::unique_ptr<ReferenceFont>> mOpenFonts;
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

/// Shapes a text of one direction, found by HarfBuzz, and of one script, found by HarfBuzz, too, when none is given.
inline ReferenceRun shapeReference(const ReferenceFont& font, std::string_view text,
                                   hb_script_t script = HB_SCRIPT_INVALID) {
    hb_buffer_t* buffer = hb_buffer_create();
    hb_buffer_add_utf8(buffer, text.data(), static_cast<int>(text.size()), 0, static_cast<int>(text.size()));
    hb_buffer_set_script(buffer, script);
    hb_buffer_guess_segment_properties(buffer);
    hb_buffer_set_language(buffer, HB_LANGUAGE_INVALID);
    hb_shape(font.getFont(), buffer, nullptr, 0);
    unsigned count = 0;
    const hb_glyph_info_t* infos = hb_buffer_get_glyph_infos(buffer, &count);
    const hb_glyph_position_t* positions = hb_buffer_get_glyph_positions(buffer, &count);
    ReferenceRun run;
    for (unsigned index = 0; index < count; ++index) {
        run.mGlyphs.push_back(
            {infos[index].codepoint, run.mAdvance + positions[index].x_offset, positions[index].y_offset});
        run.mAdvance += positions[index].x_advance;
    }
    hb_buffer_destroy(buffer);
    return run;
}

}  // namespace kt::test
