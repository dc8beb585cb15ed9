#pragma once

/// @file
/// Legacy annotation that carries styled text.

#include "legacy/ktAnnotationInterface.h"
#include "platform/system/memory/ktBlockPool.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ktLegacy {

/// Text in lines of segments; a segment is a run of bytes of one type with optional properties of its own. Segments
/// without their own use the annotation's default properties.
class KT_ANNOTATION_LEGACY_API ktAnnotationText : public ktAnnotationInterface {
public:
    /// Font, height and style. A plain value.
    struct KT_ANNOTATION_LEGACY_API TextProperties {
        /// Bits of mStyle; other bits have no meaning and are kept as read.
        static constexpr std::uint8_t sStyleBold = 1;
        static constexpr std::uint8_t sStyleItalic = 2;

        TextProperties() = default;
        /// @param heightEm  height in em, stored in hundredths: below 0 as 0, from 655.35 on (and not a number) as
        ///                  65534, else cut to a whole hundredth in single precision.
        TextProperties(const std::string& fontName, float heightEm);

        /// The height in em; one em is 3.175 drawing units.
        float getHeightEm() const { return static_cast<float>(mHeight) / 100.0F; }

        /// Reads the properties of a binary stream, unchecked.
        void load(kt::ktBaseStream& stream);
        /// Reads "heightem", "bold", "italic" and "font"; an absent key keeps what is set, but an absent height goes
        /// through the rule of the constructor again.
        void loadFromVariant(const kt::ktVariant::ktVariantMapImpl& map, const kt::ktStreamVersion& version);

        bool operator==(const TextProperties&) const = default;

        std::string mFontName = "Arial";  ///< family name
        std::uint16_t mHeight = 100;      ///< character height in hundredths of an em
        std::uint8_t mStyle = 0;          ///< sStyleBold, sStyleItalic
        std::uint8_t mReserved = 0;       ///< never interpreted; read, copied and compared
    };

    class TextSegment;

    /// A member that everyone reads like a plain value and only the segment writes; laid out like the value.
    template <typename Value>
    class OwnedBySegment {
    public:
        OwnedBySegment(const OwnedBySegment&) = delete;
        OwnedBySegment& operator=(const OwnedBySegment&) = delete;

        operator Value() const noexcept { return mValue; }  // NOLINT(google-explicit-constructor)
        Value operator->() const noexcept { return mValue; }

    private:
        friend class TextSegment;
        explicit OwnedBySegment(Value value) noexcept : mValue(value) {}
        void operator=(Value value) noexcept { mValue = value; }
        Value take() noexcept { return std::exchange(mValue, Value{}); }

        Value mValue;
    };

    /// A run of at most 65535 bytes. Owns its text and properties; copies are deep. What it owns is changed by its
    /// operations only.
    class KT_ANNOTATION_LEGACY_API TextSegment {
    public:
        /// Values beyond these may come from streams; they are kept and count as reduced text.
        enum SegmentType : std::uint8_t { Normal = 0, Subscript = 1, Superscript = 2 };

        TextSegment() = default;
        TextSegment(const char* text, SegmentType type);
        TextSegment(const std::string& text, SegmentType type);
        /// The other's text is measured again: a copy ends at an embedded NUL.
        TextSegment(const TextSegment& other);
        TextSegment(TextSegment&& other) noexcept;
        TextSegment& operator=(const TextSegment& other);
        TextSegment& operator=(TextSegment&& other) noexcept;
        ~TextSegment();

        /// Replaces the text by the first min(length, 65535) bytes of text; longer input is cut without a message, even
        /// within a character. Length 0 means: up to the NUL. A null text empties the segment.
        void setText(const char* text, unsigned long length);
        void setText(const std::string& text);
        /// The NUL-terminated text, never null. It may hold NULs: mLength counts.
        const char* getText() const { return mText != nullptr ? mText : ""; }

        /// Gives the segment its own copy of the properties.
        void setTextProperties(const TextProperties& properties);
        void clearTextProperties();

        /// Size of text of that type relative to normal text: 1 for Normal, 0.63 for every other value.
        static float GetFontScaleFactor(SegmentType type);

        /// Reads one segment of a binary stream; the layout follows the stream's version.
        void load(kt::ktBaseStream& stream);

        OwnedBySegment<char*> mText{nullptr};                  ///< mLength + 1 bytes; null when the segment is empty
        OwnedBySegment<TextProperties*> mProperties{nullptr};  ///< null: the annotation's default properties apply
        OwnedBySegment<std::uint16_t> mLength{0};              ///< bytes of text, without the NUL
        SegmentType mType = Normal;

    private:
        friend class ktAnnotationText;

        /// Replaces the text by bytes, NULs included, cut as setText() does.
        void assignText(std::string_view text);
        /// Replaces the text by length bytes of 0 for the caller to fill.
        char* allocateText(std::uint16_t length);
        void releaseText() noexcept;
        /// Properties of single segments are many and small: they come from the block pool.
        TextProperties& makeProperties(TextProperties properties);
        /// Reads a whole segment without properties from 6.17 on, at one check of the bounds. False, with nothing
        /// read, when the next segment is not such a one.
        bool loadUsual(kt::ktBaseStream& stream);
        void loadText(kt::ktBaseStream& stream);
        void loadTextPrior_6_17(kt::ktBaseStream& stream);
    };

    using Line = std::vector<TextSegment, kt::ktPoolAllocator<TextSegment>>;
    using Lines = std::vector<Line, kt::ktPoolAllocator<Line>>;

    ktAnnotationText();
    ktAnnotationText(const ktAnnotationText& other);
    ktAnnotationText& operator=(const ktAnnotationText& other);
    ~ktAnnotationText() override;

    void load(kt::ktBaseStream& stream) override;
    bool loadFromVariant(const kt::ktVariant::ktVariantMapImpl& map, const kt::ktStreamVersion& version,
                         std::vector<std::string>& errors) override;

    /// Replaces the content by plain text: one line with one normal segment for each piece between line ends (CR LF, CR
    /// or LF). An empty text gives one line with one empty segment.
    void setText(const std::string& text);
    /// Removes empty segments at the edges of every line, then empty lines at the edges of the text. Blanks count as
    /// text.
    void trim(bool leading, bool trailing);
    /// Replaces out by the plain text, lines joined by line feeds.
    void toString(std::string& out) const;

    TextProperties mDefaultTextProperties;  ///< of every segment that has none of its own
    Lines mLines;                           ///< in reading order; lines may be empty

private:
    friend class ktAnnotationInterface;
    ktAnnotationText(const ktAnnotationText& other, WithoutChildren);

    void loadPrior_6_15(kt::ktBaseStream& stream);
    void loadLines(kt::ktBaseStream& stream);
    bool loadFromMap(const kt::ktVariant::ktVariantMapImpl& map, kt::ktStreamVersion version,
                     reading::MapReport& report);
    void loadLinesFromLists(const kt::ktVariant::ktVariantListImpl& lines, reading::MapReport& report);
    /// @param areDefaultsStable  the default height survives its conversion, so that a map without property keys cannot
    ///                           differ from the defaults.
    void loadSegmentFromMap(const kt::ktVariant::ktVariantMapImpl& map, bool areDefaultsStable, TextSegment& segment,
                            reading::MapReport& report) const;
    void setPlainText(std::string_view text);
};

}  // namespace ktLegacy
