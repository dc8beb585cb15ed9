#pragma once

/// @file
/// SVG files.

#include "platform/svg/BoundingBox.h"
#include "platform/svg/ItemInterface.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kt::svg {

/// Writes one SVG file: startDocument, then groups, lines and items in drawing order, then endDocument. The same calls
/// give the same bytes on every machine and in every locale. What was written may be released at once.
///
/// The file is well-formed XML whatever bytes the items hold (what XML cannot hold becomes U+FFFD) and refers to
/// nothing outside itself. Coordinates differ from the items' by at most 0.0005 drawing units in the file's frame
/// (those of a kilometre and more, read as millimetres, within float precision). An item with a number that is not
/// finite is left out, and a warning says so. Elements nest at most sMaxDepth deep: what lies deeper in the items is
/// flattened. Only what differs from what the enclosing groups say is written, groups that hold nothing are not.
class KT_SVG_API SvgWriter {
public:
    /// Readers in the field refuse elements nested deeper than 50.
    static constexpr int sMaxDepth = 48;
    /// Readers in the field refuse longer attributes. An element that would be longer is left out with a warning.
    static constexpr std::size_t sMaxElementSize = 10'000'000;
    /// Titles are cut to this many bytes.
    static constexpr std::size_t sMaxTitleSize = 1'000'000;

    enum class TextMode : std::uint8_t {
        Text,      ///< text elements: searchable, drawn with the reader's fonts at the measured length
        Outlines,  ///< glyph outlines, each defined once; text without a glyph source stays text, with a warning
    };

    /// A drawing has two layers, so that things which belong together but lie apart in depth can be written together.
    enum class Layer : std::uint8_t {
        Beneath,  ///< beneath everything in the other one
        Above,
    };

    /// Something that was left out or replaced.
    struct Warning {
        enum class Kind : std::uint8_t {
            NumberNotFinite,     ///< an item with such a number was left out
            ColorUnknown,        ///< a colour that is neither a word nor `#RRGGBB`; the inherited one is drawn
            PictureUnknown,      ///< no PNG, JPEG, GIF or WebP picture
            PictureTooLarge,     ///< larger than 7,400,000 bytes
            PictureWithoutData,  ///< a data URI that ends before its data
            PictureNotBase64,    ///< a data URI whose data cannot be decoded
            PictureDamaged,      ///< a picture that is cut, or without a size; embedded as it is
            TextUnreadable,      ///< text in a colour whose contrast to what lies beneath it is below 3 to 1
            PageTooLarge,        ///< a coordinate so far away that nothing can be seen in the drawing
            ElementTooLong,      ///< an item that would take more than sMaxElementSize bytes was left out
            OutlinesMissing,     ///< text without a glyph source stays text among outlines
            GlyphMissing,        ///< boxes stand for characters that no font has
        };

        Kind mKind;
        std::string mWhat;  ///< an English sentence part: "an image was left out: ..."
    };

    struct Options {
        TextMode mTextMode = TextMode::Text;
        float mLineWidth = 0.25F;  ///< of outlines, in drawing units (millimetres)
        /// Whether a rectangle is drawn that the image after it covers exactly: pictures may be line art on
        /// transparency.
        bool mDrawsPictureBackgrounds = false;
        std::string mBackground{};  ///< colour of the whole page, one that isColor accepts; empty: none
    };

    /// What startGroup gives a group; empty texts are left out.
    struct Group {
        std::string_view mTitle;
        std::string_view mColor;         ///< fill
        std::string_view mOutlineColor;  ///< stroke
        Transform mTransform;
    };

    explicit SvgWriter(const Options& options);
    SvgWriter(const SvgWriter&) = delete;
    SvgWriter& operator=(const SvgWriter&) = delete;
    ~SvgWriter();

    /// Whether all numbers of the item itself, not of a group's children, are finite, so that it can be written.
    static bool isWritable(const ItemInterface& item);

    /// Whether a text is a colour that is written: a word, `#RGB` or `#RRGGBB`.
    static bool isColor(std::string_view text);

    /// Begins the file, in the layer above.
    void startDocument(std::string_view title);

    /// What follows is drawn in this layer. Only outside all groups.
    void selectLayer(Layer layer);

    /// Opens a group; false, and nothing is opened, when its transform is not finite (a warning says so). Groups nest
    /// freely up to half of sMaxDepth; deeper ones are a programming error.
    bool startGroup(const Group& group);
    void endGroup();

    /// Straight lines as one element: startLines, addLine for each, endLines. They have the group's outline colour.
    void startLines();
    void addLine(const Wm4::Vector2<float>& from, const Wm4::Vector2<float>& to);
    void endLines();

    /// Writes an item with everything in it.
    /// @param placement  applied last; null: none.
    void writeItem(const ItemInterface& item, const Transform* placement = nullptr);

    /// Completes the file. The part of the plane that is shown comes last, so that it can be found while writing: what
    /// has just been written is still in the cache.
    /// @param viewBox  in millimetres, y down. A box without width or height is widened to a millimetre; one that is
    ///                 empty or not finite becomes a millimetre at the origin.
    /// @param description  for people who cannot see the drawing; empty: none.
    /// @return the file's text in pieces, in order; valid until the writer is destroyed.
    std::vector<std::string_view> endDocument(const BoundingBox& viewBox, std::string_view description = {});

    /// Hands over what was left out or replaced since the last call, in order.
    std::vector<Warning> takeWarnings();

private:
    class Document;
    std::unique_ptr<Document> mDocument;
};

}  // namespace kt::svg
