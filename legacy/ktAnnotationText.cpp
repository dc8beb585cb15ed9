#include "legacy/ktAnnotationText.h"

#include "legacy/ktLegacyVersions.h"
#include "legacy/stream/StreamReading_p.h"
#include "legacy/variant/MapReport_p.h"
#include "legacy/variant/VariantReading_p.h"
#include "platform/system/stream/ktBaseStream.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <utility>

namespace ktLegacy {

namespace {

using TextProperties = ktAnnotationText::TextProperties;
using TextSegment = ktAnnotationText::TextSegment;
using SegmentType = TextSegment::SegmentType;

constexpr std::size_t sMaxSegmentLength = std::numeric_limits<std::uint16_t>::max();

constexpr std::array<reading::Word<SegmentType>, 2> sSegmentTypeWords{{
    {"sub", SegmentType::Subscript},
    {"sup", SegmentType::Superscript},
}};

/// Hundredths of an em as they are stored.
std::uint16_t toStoredHeight(float heightEm) {
    // Not the same as "heightEm >= 655.35F": a NaN goes here, too. That the largest result is 65534 is intended: so old
    // documents store a height that did not fit, and equal heights must stay equal.
    if (!(655.35F > heightEm)) {
        return 65534;
    }
    return heightEm < 0.0F ? std::uint16_t{0} : static_cast<std::uint16_t>(heightEm * 100.0F);
}

std::uint8_t replaceBit(std::uint8_t bits, std::uint8_t bit, const kt::ktVariant* value) {
    if (value == nullptr) {
        return bits;
    }
    return static_cast<std::uint8_t>(value->toBool() ? bits | bit : bits & ~bit);
}

/// Values of the keys of text properties, null where absent.
struct PropertyValues {
    const kt::ktVariant* mHeight;
    const kt::ktVariant* mBold;
    const kt::ktVariant* mItalic;
    const kt::ktVariant* mFont;
};

/// What a map makes of text properties, without copies of the texts.
class DerivedProperties {
public:
    DerivedProperties(const TextProperties& base, const PropertyValues& values)
        : mConvertedFont(values.mFont),
          mFontName(values.mFont != nullptr ? mConvertedFont.get() : std::string_view(base.mFontName)),
          // Without a height the present one is converted again, which may lower it by one hundredth. That is
          // intended: segments written without a height were laid out with the lowered one.
          mHeight(toStoredHeight(values.mHeight != nullptr ? reading::toFloat(*values.mHeight) : base.getHeightEm())),
          mStyle(replaceBit(replaceBit(base.mStyle, TextProperties::sStyleBold, values.mBold),
                            TextProperties::sStyleItalic, values.mItalic)) {}

    bool isEqual(const TextProperties& properties) const {
        return mHeight == properties.mHeight && mStyle == properties.mStyle && mFontName == properties.mFontName;
    }

    /// Stores all but the reserved byte, which maps do not hold.
    void store(TextProperties& properties) const {
        if (properties.mFontName != mFontName) {
            properties.mFontName = mFontName;
        }
        properties.mHeight = mHeight;
        properties.mStyle = mStyle;
    }

private:
    reading::VariantText mConvertedFont;
    std::string_view mFontName;
    std::uint16_t mHeight;
    std::uint8_t mStyle;
};

void tellCutText(std::size_t size, reading::MapReport& report) {
    if (size > sMaxSegmentLength) {
        report.tell(ktFindingCode::TextCut, std::to_string(size));
    }
}

/// Tells of the lines of a plain text that are too long for a segment.
void tellCutPieces(std::string_view text, reading::MapReport& report) {
    while (text.size() > sMaxSegmentLength) {
        const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
        tellCutText(end, report);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

/// Removes what is empty at the edges of a sequence.
template <typename Sequence, typename IsEmpty>
void trimSequence(Sequence& sequence, bool leading, bool trailing, IsEmpty isEmpty) {
    if (trailing) {
        const auto last = std::find_if_not(sequence.rbegin(), sequence.rend(), isEmpty);
        sequence.erase(last.base(), sequence.end());
    }
    if (leading) {
        sequence.erase(sequence.begin(), std::find_if_not(sequence.begin(), sequence.end(), isEmpty));
    }
}

}  // namespace

// Text properties

ktAnnotationText::TextProperties::TextProperties(const std::string& fontName, float heightEm)
    : mFontName(fontName), mHeight(toStoredHeight(heightEm)) {}

void ktAnnotationText::TextProperties::load(kt::ktBaseStream& stream) {
    struct Group {
        std::uint16_t mHeight;
        std::uint8_t mStyle;
        std::uint8_t mReserved;
    };
    static_assert(sizeof(Group) == 4);
    reading::readText(stream, mFontName);
    Group group{};
    stream.readle(4, 1, &group);
    mHeight = group.mHeight;
    mStyle = group.mStyle;
    mReserved = group.mReserved;
}

void ktAnnotationText::TextProperties::loadFromVariant(const kt::ktVariant::ktVariantMapImpl& map,
                                                       const kt::ktStreamVersion& /*version*/) {
    static constexpr auto keys = reading::makeKeys("bold", "font", "heightem", "italic");
    const auto [bold, font, height, italic] = reading::findKeys(map, keys);
    DerivedProperties(*this, {height, bold, italic, font}).store(*this);
}

// Text segments

ktAnnotationText::TextSegment::TextSegment(const char* text, SegmentType type) : TextSegment() {
    mType = type;
    setText(text, 0);
}

ktAnnotationText::TextSegment::TextSegment(const std::string& text, SegmentType type) : TextSegment() {
    mType = type;
    assignText(text);
}

// The delegation makes this a whole object first: if copying throws, the destructor releases what there is.
ktAnnotationText::TextSegment::TextSegment(const TextSegment& other) : TextSegment() {
    mType = other.mType;
    setText(other.mText, 0);
    if (other.mProperties != nullptr) {
        makeProperties(*other.mProperties);
    }
}

ktAnnotationText::TextSegment::TextSegment(TextSegment&& other) noexcept
    : mText(other.mText.take()),
      mProperties(other.mProperties.take()),
      mLength(other.mLength.take()),
      mType(other.mType) {}

ktAnnotationText::TextSegment& ktAnnotationText::TextSegment::operator=(const TextSegment& other) {
    if (&other != this) {
        *this = TextSegment(other);
    }
    return *this;
}

ktAnnotationText::TextSegment& ktAnnotationText::TextSegment::operator=(TextSegment&& other) noexcept {
    if (&other != this) {
        releaseText();
        clearTextProperties();
        mText = other.mText.take();
        mProperties = other.mProperties.take();
        mLength = other.mLength.take();
        mType = other.mType;
    }
    return *this;
}

ktAnnotationText::TextSegment::~TextSegment() {
    releaseText();
    clearTextProperties();
}

void ktAnnotationText::TextSegment::setText(const char* text, unsigned long length) {
    if (text == nullptr) {
        releaseText();
        return;
    }
    assignText({text, length != 0 ? length : std::strlen(text)});
}

void ktAnnotationText::TextSegment::setText(const std::string& text) { assignText(text); }

void ktAnnotationText::TextSegment::assignText(std::string_view text) {
    const auto length = static_cast<std::uint16_t>(std::min(text.size(), sMaxSegmentLength));
    if (mText == nullptr) {
        if (length != 0) {
            std::memcpy(allocateText(length), text.data(), length);
        }
        return;
    }
    // The text may be a part of the segment's own: the old one is released last.
    TextSegment old;
    old.mText = mText.take();
    old.mLength = mLength.take();
    if (length != 0) {
        std::memcpy(allocateText(length), text.data(), length);
    }
}

char* ktAnnotationText::TextSegment::allocateText(std::uint16_t length) {
    releaseText();
    mText = static_cast<char*>(kt::ktBlockPool::allocate(std::size_t{length} + 1));
    mText[length] = '\0';
    mLength = length;
    return mText;
}

void ktAnnotationText::TextSegment::releaseText() noexcept {
    if (mText != nullptr) {
        kt::ktBlockPool::release(mText, std::size_t{mLength} + 1);
        mText = nullptr;
        mLength = 0;
    }
}

void ktAnnotationText::TextSegment::setTextProperties(const TextProperties& properties) {
    if (mProperties != nullptr) {
        *mProperties = properties;
    } else {
        makeProperties(properties);
    }
}

TextProperties& ktAnnotationText::TextSegment::makeProperties(TextProperties properties) {
    mProperties = new (kt::ktBlockPool::allocate(sizeof(TextProperties))) TextProperties(std::move(properties));
    return *mProperties;
}

void ktAnnotationText::TextSegment::clearTextProperties() {
    if (TextProperties* properties = mProperties.take(); properties != nullptr) {
        properties->~TextProperties();
        kt::ktBlockPool::release(properties, sizeof(TextProperties));
    }
}

float ktAnnotationText::TextSegment::GetFontScaleFactor(SegmentType type) { return type == Normal ? 1.0F : 0.63F; }

void ktAnnotationText::TextSegment::load(kt::ktBaseStream& stream) {
    clearTextProperties();
    releaseText();
    if (stream.GetVersion() >= version::s6_17) {
        if (loadUsual(stream)) {
            return;
        }
        loadText(stream);
        std::uint8_t type = mType;
        stream.readByte(type);
        mType = static_cast<SegmentType>(type);
    } else {
        loadTextPrior_6_17(stream);
        mType = Normal;
    }
    std::uint8_t hasProperties = 0;
    stream.readByte(hasProperties);
    if (hasProperties != 0) {
        stream.chargeMemory(1, sizeof(TextProperties));
        makeProperties({}).load(stream);
    }
}

// What this saves: benchmarks/RESULTS.md, usual segments.
bool ktAnnotationText::TextSegment::loadUsual(kt::ktBaseStream& stream) {
    constexpr std::size_t sLengthSize = 2;
    constexpr std::size_t sEndSize = 2;  // type, and whether properties follow
    const std::byte* lengthBytes = stream.peek(sLengthSize);
    if (lengthBytes == nullptr) {
        return false;
    }
    const std::size_t length =
        std::to_integer<std::size_t>(lengthBytes[0]) | std::to_integer<std::size_t>(lengthBytes[1]) << 8U;
    const std::byte* bytes = stream.peek(sLengthSize + length + sEndSize);
    if (bytes == nullptr) {
        return false;
    }
    const std::byte* text = bytes + sLengthSize;
    const std::byte* end = text + length;
    if (end[1] != std::byte{0}) {
        return false;
    }
    stream.take(sLengthSize);
    if (length != 0) {
        stream.chargeMemory(length + 1, 1);
        std::memcpy(allocateText(static_cast<std::uint16_t>(length)), text, length);
    }
    mType = static_cast<SegmentType>(end[0]);
    stream.take(length + sEndSize);
    return true;
}

void ktAnnotationText::TextSegment::loadText(kt::ktBaseStream& stream) {
    std::uint16_t length = 0;
    stream.readle(2, 1, &length);
    if (length != 0) {
        stream.chargeMemory(std::uint64_t{length} + 1, 1);
        reading::readBytes(stream, allocateText(length), length);
    }
}

void ktAnnotationText::TextSegment::loadTextPrior_6_17(kt::ktBaseStream& stream) {
    std::string text;
    reading::readText(stream, text);
    stream.chargeMemory(std::min(text.size(), sMaxSegmentLength) + 1, 1);
    assignText(text);
}

// Text annotations

ktAnnotationText::ktAnnotationText() : ktAnnotationInterface(Text) {}

ktAnnotationText::ktAnnotationText(const ktAnnotationText& other, WithoutChildren tag)
    : ktAnnotationInterface(other, tag), mDefaultTextProperties(other.mDefaultTextProperties), mLines(other.mLines) {}

ktAnnotationText::ktAnnotationText(const ktAnnotationText& other) : ktAnnotationText(other, WithoutChildren{}) {
    copyChildrenOf(other);
}

ktAnnotationText& ktAnnotationText::operator=(const ktAnnotationText& other) {
    if (&other == this) {
        return *this;
    }
    // The copy first: one of the two may be a part of the other's tree.
    ktAnnotationText copy(other);
    swapContent(copy);
    std::swap(mDefaultTextProperties, copy.mDefaultTextProperties);
    mLines.swap(copy.mLines);
    return *this;
}

ktAnnotationText::~ktAnnotationText() = default;

void ktAnnotationText::setText(const std::string& text) { setPlainText(text); }

void ktAnnotationText::setPlainText(std::string_view text) {
    Lines lines;
    std::size_t begin = 0;
    while (true) {
        const std::size_t end = std::min(text.find_first_of("\r\n", begin), text.size());
        lines.emplace_back().emplace_back().assignText(text.substr(begin, end - begin));
        if (end == text.size()) {
            break;
        }
        const bool isPair = text.substr(end).starts_with("\r\n");
        begin = end + (isPair ? 2 : 1);
    }
    mLines.swap(lines);
}

void ktAnnotationText::trim(bool leading, bool trailing) {
    for (Line& line : mLines) {
        trimSequence(line, leading, trailing, [](const TextSegment& segment) { return segment.mLength == 0; });
    }
    trimSequence(mLines, leading, trailing, [](const Line& line) { return line.empty(); });
}

void ktAnnotationText::toString(std::string& out) const {
    out.clear();
    for (const Line& line : mLines) {
        if (&line != &mLines.front()) {
            out += '\n';
        }
        for (const TextSegment& segment : line) {
            out.append(segment.getText(), segment.mLength);
        }
    }
}

// Binary records

void ktAnnotationText::load(kt::ktBaseStream& stream) {
    if (stream.GetVersion() < version::s6_15) {
        loadPrior_6_15(stream);
        return;
    }
    ktAnnotationInterface::load(stream);
    mDefaultTextProperties.load(stream);
    loadLines(stream);
}

void ktAnnotationText::loadPrior_6_15(kt::ktBaseStream& stream) {
    const bool isWholeRecord = stream.GetVersion() >= version::s6_14;
    if (isWholeRecord) {
        reading::readText(stream, mName);
    }
    mDefaultTextProperties.load(stream);
    loadLeaders(stream);
    loadLines(stream);
    loadPlacement(stream);
    if (!isWholeRecord) {
        // Before 6.14 the byte only told whether there is a frame.
        setFlags(getFlags() != 0 ? FrameRectangle : FrameNone);
    }
}

void ktAnnotationText::loadLines(kt::ktBaseStream& stream) {
    reading::resizeList(stream, mLines, reading::readCount(stream));
    for (Line& line : mLines) {
        reading::resizeList(stream, line, reading::readCount(stream));
        for (TextSegment& segment : line) {
            segment.load(stream);
        }
    }
}

// Maps of variant documents

bool ktAnnotationText::loadFromVariant(const kt::ktVariant::ktVariantMapImpl& map, const kt::ktStreamVersion& version,
                                       std::vector<std::string>& errors) {
    reading::MapReport report(errors);
    return loadFromMap(map, version, report);
}

bool ktAnnotationText::loadFromMap(const kt::ktVariant::ktVariantMapImpl& map, kt::ktStreamVersion version,
                                   reading::MapReport& report) {
    if (!loadBaseFromMap(map, version, report)) {
        return false;
    }
    if (version < version::s6_17) {
        report.tell(ktFindingCode::InvalidTextVersion);
        return false;
    }
    static constexpr auto keys = reading::makeKeys("defaulttextprop", "lines", "text");
    const auto [defaults, lines, text] = reading::findKeys(map, keys);
    if (defaults != nullptr) {
        const reading::VariantMap* properties = defaults->getMap();
        if (properties != nullptr) {
            mDefaultTextProperties.loadFromVariant(*properties, version);
        } else {
            report.tell(ktFindingCode::InvalidDefaultTextProperties);
        }
    }
    if (const reading::VariantList* list = reading::getList(lines); list != nullptr) {
        loadLinesFromLists(*list, report);
    } else {
        const reading::VariantText content(text);
        setPlainText(content.get());
        tellCutPieces(content.get(), report);
    }
    return true;
}

void ktAnnotationText::loadLinesFromLists(const kt::ktVariant::ktVariantListImpl& lines, reading::MapReport& report) {
    const bool areDefaultsStable =
        toStoredHeight(mDefaultTextProperties.getHeightEm()) == mDefaultTextProperties.mHeight;
    mLines.reserve(mLines.size() + lines.size());
    for (const kt::ktVariant& item : lines) {
        const reading::VariantList* segments = item.getList();
        if (segments == nullptr) {
            report.tell(ktFindingCode::InvalidLine);
            continue;
        }
        Line& line = mLines.emplace_back();
        line.reserve(segments->size());
        for (const kt::ktVariant& segment : *segments) {
            const reading::VariantMap* map = segment.getMap();
            if (map != nullptr) {
                loadSegmentFromMap(*map, areDefaultsStable, line.emplace_back(), report);
            } else {
                report.tell(ktFindingCode::InvalidSegment);
            }
        }
    }
}

void ktAnnotationText::loadSegmentFromMap(const kt::ktVariant::ktVariantMapImpl& map, bool areDefaultsStable,
                                          TextSegment& segment, reading::MapReport& report) const {
    static constexpr auto keys = reading::makeKeys("bold", "font", "heightem", "italic", "text", "type");
    const auto [bold, font, height, italic, text, type] = reading::findKeys(map, keys);
    const reading::VariantText content(text);
    segment.assignText(content.get());
    tellCutText(content.get().size(), report);
    const bool hasPropertyKeys = bold != nullptr || font != nullptr || height != nullptr || italic != nullptr;
    if (hasPropertyKeys || !areDefaultsStable) {
        const DerivedProperties properties(mDefaultTextProperties, {height, bold, italic, font});
        if (!properties.isEqual(mDefaultTextProperties)) {
            segment.setTextProperties(mDefaultTextProperties);
            properties.store(*segment.mProperties);
        }
    }
    if (type != nullptr) {
        segment.mType = reading::readWord(reading::VariantText(type).get(), sSegmentTypeWords, SegmentType::Normal);
    }
}

}  // namespace ktLegacy
