#include "tests/annotation/ReferenceShaping.h"

#include <fontconfig/fontconfig.h>
#include <hb.h>

namespace kt::test {

ReferenceFont::ReferenceFont(const std::string& pattern) {
    FcPattern* request = FcNameParse(reinterpret_cast<const FcChar8*>(pattern.c_str()));
    FcConfigSubstitute(nullptr, request, FcMatchPattern);
    FcDefaultSubstitute(request);
    FcResult result = FcResultNoMatch;
    FcPattern* match = FcFontMatch(nullptr, request, &result);
    FcChar8* path = nullptr;
    FcChar8* family = nullptr;
    int index = 0;
    FcPatternGetString(match, FC_FILE, 0, &path);
    FcPatternGetString(match, FC_FAMILY, 0, &family);
    FcPatternGetInteger(match, FC_INDEX, 0, &index);
    mIsInstalled = pattern.substr(0, pattern.find(':')) == reinterpret_cast<const char*>(family);
    hb_blob_t* blob = hb_blob_create_from_file(reinterpret_cast<const char*>(path));
    hb_face_t* face = hb_face_create(blob, static_cast<unsigned>(index) & 0xFFFFU);
    FcPatternDestroy(match);
    FcPatternDestroy(request);
    mFont = hb_font_create(face);
    hb_face_destroy(face);
    hb_blob_destroy(blob);
}

ReferenceFont::~ReferenceFont() { hb_font_destroy(mFont); }

double ReferenceFont::getUnitsPerEm() const { return hb_face_get_upem(hb_font_get_face(mFont)); }

bool ReferenceFont::isBlank(std::uint32_t glyph) const {
    hb_glyph_extents_t extents{};
    return !hb_font_get_glyph_extents(mFont, glyph, &extents) || extents.width == 0;
}

ReferenceRun shapeReference(const ReferenceFont& font, std::string_view text) {
    hb_buffer_t* buffer = hb_buffer_create();
    hb_buffer_add_utf8(buffer, text.data(), static_cast<int>(text.size()), 0, static_cast<int>(text.size()));
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
