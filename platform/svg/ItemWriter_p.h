#pragma once

/// @file
/// Elements of single items.

#include "platform/svg/Affine_p.h"
#include "platform/svg/FontStyles_p.h"
#include "platform/svg/GlyphDefinitions_p.h"
#include "platform/svg/GlyphSource.h"
#include "platform/svg/NumberFormat_p.h"
#include "platform/svg/PictureDefinitions_p.h"
#include "platform/svg/Readability_p.h"
#include "platform/svg/SvgWriter.h"
#include "platform/svg/TextBuffer_p.h"

#include <array>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

namespace kt::svg {

class Image;
class Path;
class Rect;
class Text;

inline constexpr std::string_view sNotFinite = "a number is not finite";

/// Fill and outline colour.
struct Paint {
    std::string_view mColor;
    std::string_view mOutlineColor;
};

/// Where in the file an item is written.
struct WriteContext {
    Affine mMap;                       ///< from the item's surroundings to the innermost open group
    double mScale = 1.0;               ///< of that group in the file's frame
    Paint mInherited;                  ///< colours that the item inherits
    Paint mWritten;                    ///< colours that the innermost open group has in the file
    const FontStyle* mFont = nullptr;  ///< that the open groups have in the file; null: none
};

int getScaledDecimals(double scale);

/// Decimals that keep coordinates within their tolerance when they are scaled so.
inline int getDecimals(double scale) { return scale == 1.0 ? sCoordinateDecimals : getScaledDecimals(scale); }

/// Writes rectangles, images, paths and texts as elements, and what all elements share. Holds what must be known about
/// the whole file: ids, glyphs and warnings.
class ItemWriter {
public:
    using Warning = SvgWriter::Warning;

    ItemWriter(TextBuffer& buffer, const SvgWriter::Options& options);

    /// Where it writes from now on.
    void setBuffer(TextBuffer& buffer) { mBuffer = &buffer; }

    /// Begins with items that do not lie on those before.
    void startTree() { mReadability.clear(); }

    /// Writes an item that is no group.
    void writeItem(const ItemInterface& item, const WriteContext& context);

    /// The item's own colours, where they are colours, before the inherited ones.
    Paint getPaint(const ItemInterface& item, const Paint& inherited);

    const FontStyle& findFont(const Text& text, int decimals) { return mFonts.find(text, decimals); }
    void appendTransform(const Affine& map, double outerScale);
    void appendPaint(const Paint& paint, const Paint& written);
    /// Id and class.
    /// @param ownClass  one of the writer's; empty: none.
    void appendNames(const ItemInterface& item, std::string_view ownClass = {});
    void forgetId(std::string_view id) { mIds.erase(std::string(id)); }

    /// Tells that an item was left out.
    void warn(Warning::Kind kind, std::string_view item, std::string_view problem);

    const FontStyles& getFonts() const { return mFonts; }
    const GlyphDefinitions& getGlyphs() const { return mGlyphs; }
    const PictureDefinitions& getPictures() const { return mPictures; }

    /// Whether an item is the ground that an image behind it in the same group covers as a whole.
    bool isPictureBackground(const ItemInterface& item, const ItemInterface& next);
    std::vector<Warning> takeWarnings() { return std::exchange(mWarnings, {}); }

private:
    /// How an item is put in its place: by its coordinates alone, or by a transform attribute.
    struct Placement {
        double mX = 0.0;  ///< added to the coordinates
        double mY = 0.0;
        int mDecimals = 0;
        bool mIsTransformed = false;
    };
    static Placement place(const Affine& map, double outerScale);

    void writeRect(const Rect& rect, const Affine& map, const WriteContext& context);
    void writeImage(const Image& image, const Affine& map, const WriteContext& context);
    void writePath(const Path& path, const Affine& map, const WriteContext& context);
    void writeText(const Text& text, const Affine& map, const WriteContext& context);
    void checkReadability(const Text& text, const Affine& map, const WriteContext& context);
    void writeOutlines(const Text& text, const Affine& map, const WriteContext& context);
    void warnOfMissingGlyphs();
    void writeGlyph(const PlacedGlyph& glyph, double runScale, int decimals);

    static char* putPaint(char* out, const Paint& paint, const Paint& written);
    void appendBox(std::string_view start, const Wm4::Vector2<float>& position, const Wm4::Vector2<float>& size,
                   const Placement& placement);
    /// Everything after the attributes that are an element's own.
    void appendCommon(const ItemInterface& item, const Affine& map, const Placement& placement, const Paint& paint,
                      const WriteContext& context, std::string_view ownClass);
    /// The class of items with an outline that gets wider when the drawing is enlarged; empty for others.
    static std::string_view getOutlineClass(const ItemInterface& item, const Paint& paint);

    TextBuffer* mBuffer;
    SvgWriter::TextMode mTextMode;
    std::unordered_set<std::string> mIds;
    Readability mReadability;
    FontStyles mFonts;
    GlyphDefinitions mGlyphs;
    PictureDefinitions mPictures;
    std::vector<PlacedGlyph> mPlacedGlyphs;
    std::unordered_set<char32_t> mMissingCharacters;  ///< that warnings have named
    std::vector<Warning> mWarnings;
};

}  // namespace kt::svg
