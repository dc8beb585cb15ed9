#include "platform/annotation/Font_p.h"
#include "platform/annotation/SimpleGlyphRules_p.h"

#include <ft2build.h>
#include <hb-ot.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <utility>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

namespace kt::text {

namespace {

/// Share of the em by which a thickened stroke grows.
constexpr double sEmboldening = 1.0 / 24.0;
// Where a font does not say how far its sub- and superscripts are shifted.
constexpr float sDefaultSubscriptDrop = 0.14F;
constexpr float sDefaultSuperscriptRise = 0.35F;

FontMetrics readMetrics(hb_font_t* font, unsigned unitsPerEm) {
    const auto read = [font, unitsPerEm](hb_ot_metrics_tag_t tag) {
        hb_position_t position = 0;
        hb_ot_metrics_get_position_with_fallback(font, tag, &position);
        return static_cast<float>(position) / static_cast<float>(unitsPerEm);
    };
    FontMetrics metrics;
    metrics.mAscent = read(HB_OT_METRICS_TAG_HORIZONTAL_ASCENDER);
    metrics.mDescent = std::abs(read(HB_OT_METRICS_TAG_HORIZONTAL_DESCENDER));
    metrics.mLineGap = std::max(0.0F, read(HB_OT_METRICS_TAG_HORIZONTAL_LINE_GAP));
    hb_position_t offset = 0;
    hb_ot_metrics_get_position(font, HB_OT_METRICS_TAG_SUBSCRIPT_EM_Y_OFFSET, &offset);
    // Some fonts store the offset with the wrong sign.
    metrics.mSubscriptDrop =
        offset != 0 ? static_cast<float>(std::abs(offset)) / static_cast<float>(unitsPerEm) : sDefaultSubscriptDrop;
    offset = 0;
    hb_ot_metrics_get_position(font, HB_OT_METRICS_TAG_SUPERSCRIPT_EM_Y_OFFSET, &offset);
    metrics.mSuperscriptRise =
        offset != 0 ? static_cast<float>(std::abs(offset)) / static_cast<float>(unitsPerEm) : sDefaultSuperscriptRise;
    return metrics;
}

/// Receives an outline from FreeType (y up) and builds a path of it (y down).
class PathSink {
public:
    static void build(FT_Outline& outline, svg::Path& path) {
        PathSink sink(path);
        const FT_Outline_Funcs functions{moveTo, lineTo, conicTo, cubicTo, 0, 0};
        FT_Outline_Decompose(&outline, &functions, &sink);
        sink.closeContour();
    }

private:
    using Point = Wm4::Vector2<float>;

    explicit PathSink(svg::Path& path) : mPath(path) {}

    static Point toPoint(const FT_Vector& vector) {
        return {static_cast<float>(vector.x), -static_cast<float>(vector.y)};
    }
    static PathSink& get(void* user) { return *static_cast<PathSink*>(user); }

    static int moveTo(const FT_Vector* to, void* user) {
        PathSink& sink = get(user);
        sink.closeContour();
        sink.mLast = toPoint(*to);
        sink.mPath.moveTo(sink.mLast);
        sink.mIsOpen = true;
        return 0;
    }
    static int lineTo(const FT_Vector* to, void* user) {
        PathSink& sink = get(user);
        sink.mLast = toPoint(*to);
        sink.mPath.lineTo(sink.mLast);
        return 0;
    }
    static int conicTo(const FT_Vector* control, const FT_Vector* to, void* user) {
        PathSink& sink = get(user);
        const Point middle = toPoint(*control);
        const Point end = toPoint(*to);
        const float share = 2.0F / 3.0F;
        sink.mPath.cubicTo(sink.mLast + (middle - sink.mLast) * share, end + (middle - end) * share, end);
        sink.mLast = end;
        return 0;
    }
    static int cubicTo(const FT_Vector* control1, const FT_Vector* control2, const FT_Vector* to, void* user) {
        PathSink& sink = get(user);
        sink.mLast = toPoint(*to);
        sink.mPath.cubicTo(toPoint(*control1), toPoint(*control2), sink.mLast);
        return 0;
    }
    void closeContour() {
        if (mIsOpen) {
            mPath.close();
        }
        mIsOpen = false;
    }

    svg::Path& mPath;
    Point mLast{};
    bool mIsOpen = false;
};

}  // namespace

/// Reads outlines through FreeType from the bytes that the shaping font maps. One thread at a time.
class Font::OutlineReader {
public:
    OutlineReader(hb_face_t* face, const FontSource& source) : mSource(source), mBlob(hb_face_reference_blob(face)) {
        if (FT_Init_FreeType(&mLibrary) != 0) {
            mLibrary = nullptr;
            return;
        }
        unsigned length = 0;
        const char* data = hb_blob_get_data(mBlob, &length);
        if (FT_New_Memory_Face(mLibrary, reinterpret_cast<const FT_Byte*>(data), static_cast<FT_Long>(length),
                               static_cast<FT_Long>(source.mIndex), &mFace) != 0) {
            mFace = nullptr;
        }
    }
    OutlineReader(const OutlineReader&) = delete;
    OutlineReader& operator=(const OutlineReader&) = delete;
    ~OutlineReader() {
        if (mLibrary != nullptr) {
            FT_Done_FreeType(mLibrary);
        }
        hb_blob_destroy(mBlob);
    }

    std::unique_ptr<const svg::Path> read(hb_codepoint_t glyph) const {
        if (mFace == nullptr || FT_Load_Glyph(mFace, glyph, FT_LOAD_NO_SCALE) != 0 ||
            mFace->glyph->format != FT_GLYPH_FORMAT_OUTLINE || mFace->glyph->outline.n_contours == 0) {
            return nullptr;
        }
        FT_Outline& outline = mFace->glyph->outline;
        applySyntheticStyle(outline);
        auto path = std::make_unique<svg::Path>();
        PathSink::build(outline, *path);
        return path->isEmpty() ? nullptr : std::move(path);
    }

private:
    void applySyntheticStyle(FT_Outline& outline) const {
        if (mSource.mIsEmboldened) {
            const FT_Pos strength = std::lround(mFace->units_per_EM * sEmboldening);
            FT_Outline_Embolden(&outline, strength);
            // FreeType thickens to the upper right; the stroke stays centred here, as its advance does.
            FT_Outline_Translate(&outline, -strength / 2, -strength / 2);
        }
        if (mSource.mMatrix != FontSource{}.mMatrix) {
            const auto toFixed = [](double value) { return static_cast<FT_Fixed>(std::lround(value * 0x10000)); };
            const FT_Matrix matrix{toFixed(mSource.mMatrix[0]), toFixed(mSource.mMatrix[1]),
                                   toFixed(mSource.mMatrix[2]), toFixed(mSource.mMatrix[3])};
            FT_Outline_Transform(&outline, &matrix);
        }
    }

    const FontSource& mSource;
    hb_blob_t* mBlob;
    FT_Library mLibrary = nullptr;
    FT_Face mFace = nullptr;
};

std::shared_ptr<const Font> Font::open(const FontSource& source) {
    hb_blob_t* blob = hb_blob_create_from_file_or_fail(source.mPath.c_str());
    if (blob == nullptr) {
        return nullptr;
    }
    hb_face_t* face = hb_face_create(blob, source.mIndex & 0xFFFFU);
    hb_blob_destroy(blob);
    if (hb_face_get_glyph_count(face) == 0) {
        hb_face_destroy(face);
        errno = 0;
        return nullptr;
    }
    hb_face_make_immutable(face);
    FontHandle font(hb_font_create(face));
    hb_face_destroy(face);
    if (const unsigned instance = source.mIndex >> 16; instance != 0) {
        hb_font_set_var_named_instance(font.get(), instance - 1);
    }
    hb_font_make_immutable(font.get());
    return std::shared_ptr<const Font>(new Font(std::move(font), source));
}

Font::Font(FontHandle shapingFont, FontSource source)
    : mShapingFont(std::move(shapingFont)),
      mSource(std::move(source)),
      mUnitsPerEm(hb_face_get_upem(getFace())),
      mMetrics(readMetrics(mShapingFont.get(), mUnitsPerEm)) {}

Font::~Font() = default;

hb_codepoint_t Font::getGlyph(char32_t character) const {
    hb_codepoint_t glyph = 0;
    return hb_font_get_nominal_glyph(mShapingFont.get(), character, &glyph) != 0 ? glyph : 0;
}

InkBox Font::getInkBox(hb_codepoint_t glyph) const {
    hb_glyph_extents_t extents{};
    InkBox box;
    if (hb_font_get_glyph_extents(mShapingFont.get(), glyph, &extents) == 0 || extents.width == 0 ||
        extents.height == 0) {
        return box;
    }
    const double growth = mSource.mIsEmboldened ? mUnitsPerEm * sEmboldening / 2.0 : 0.0;
    const double left = extents.x_bearing - growth;
    const double right = extents.x_bearing + extents.width + growth;
    const double top = extents.y_bearing + growth;
    const double bottom = extents.y_bearing + extents.height - growth;
    const std::array<double, 4>& matrix = mSource.mMatrix;
    for (const double x : {left, right}) {
        for (const double y : {bottom, top}) {
            const double mappedX = matrix[0] * x + matrix[1] * y;
            const double mappedY = matrix[2] * x + matrix[3] * y;
            box.addBox({std::floor(mappedX), std::floor(mappedY), std::ceil(mappedX), std::ceil(mappedY)});
        }
    }
    return box;
}

const svg::Path* Font::getOutline(hb_codepoint_t glyph) const {
    const std::scoped_lock lock(mOutlineMutex);
    const auto [entry, isNew] = mOutlines.try_emplace(glyph);
    if (isNew) {
        if (mOutlineReader == nullptr) {
            mOutlineReader = std::make_unique<OutlineReader>(getFace(), mSource);
        }
        entry->second = mOutlineReader->read(glyph);
    }
    return entry->second.get();
}

const SimpleGlyphRules& Font::getSimpleGlyphRules(hb_script_t script) const {
    const std::scoped_lock lock(mRulesMutex);
    std::unique_ptr<const SimpleGlyphRules>& rules = mRules[script];
    if (rules == nullptr) {
        rules = std::make_unique<const SimpleGlyphRules>(*this, script);
    }
    return *rules;
}

}  // namespace kt::text
