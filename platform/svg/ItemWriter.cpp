#include "platform/encoding/Hex.h"
#include "platform/encoding/Utf8.h"
#include "platform/svg/Image.h"
#include "platform/svg/ItemWriter_p.h"
#include "platform/svg/NumberFormat_p.h"
#include "platform/svg/PathData_p.h"
#include "platform/svg/Rect.h"
#include "platform/svg/Text.h"
#include "platform/svg/XmlText_p.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace kt::svg {

namespace {

constexpr std::string_view sNone = "none";
/// Room for a literal and four numbers.
constexpr std::size_t sNumbersSize = 512;
/// Texts up to this are copied together with their tag.
constexpr std::size_t sShortTextSize = 512;
/// Longer ids, classes and family names are nobody's.
constexpr std::size_t sMaxNameSize = 1000;

bool isLetter(char character) {
    return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z');
}

/// Spares the comparison's call for the usual spelling, "#RRGGBB".
bool isSameColor(std::string_view a, std::string_view b) {
    constexpr std::size_t usualSize = 7;
    return a.size() == b.size() && (a.size() == usualSize ? std::memcmp(a.data(), b.data(), usualSize) == 0 : a == b);
}

/// Zero when both are finite: a number that is not survives the product with zero.
float zeroIfFinite(const Wm4::Vector2<float>& a) { return a.x * 0.0F + a.y * 0.0F; }

/// Whether the numbers of an item that is no group are finite, its transform aside.
bool hasFiniteGeometry(const ItemInterface& item) {
    switch (item.getKind()) {
        case ItemInterface::Kind::Node:
            return true;
        case ItemInterface::Kind::Rect: {
            const auto& rect = static_cast<const Rect&>(item);
            return zeroIfFinite(rect.getPosition()) + zeroIfFinite(rect.getSize()) == 0.0F;
        }
        case ItemInterface::Kind::Image: {
            const auto& image = static_cast<const Image&>(item);
            return zeroIfFinite(image.getPosition()) + zeroIfFinite(image.getSize()) == 0.0F;
        }
        case ItemInterface::Kind::Path:
            return isFinite(static_cast<const Path&>(item));
        case ItemInterface::Kind::Text: {
            const auto& text = static_cast<const Text&>(item);
            return zeroIfFinite(text.getPosition()) + zeroIfFinite({text.getSize(), text.getLength()}) == 0.0F;
        }
    }
    return false;
}

/// Where a box begins along an axis, whatever the sign of its size.
double getLower(float origin, float size) {
    return std::min(static_cast<double>(origin), static_cast<double>(origin) + static_cast<double>(size));
}

std::string_view getName(ItemInterface::Kind kind) {
    switch (kind) {
        case ItemInterface::Kind::Rect:
            return "a rectangle";
        case ItemInterface::Kind::Image:
            return "an image";
        case ItemInterface::Kind::Path:
            return "a path";
        case ItemInterface::Kind::Text:
            return "a text";
        case ItemInterface::Kind::Node:
            break;
    }
    return "a group";
}

char* putNumber(char* out, double value, int decimals) {
    return decimals == sCoordinateDecimals ? formatCoordinate(out, value) : formatNumber(out, value, decimals);
}

/// Whether some of the UTF-8 text's characters may join, stack or combine: all but those of Latin, Greek and Cyrillic
/// letters, of symbols and of Han, kana and Hangul.
bool mayHoldJoiningLetters(std::string_view text) {
    return std::any_of(text.begin(), text.end(), [](char byte) {
        const auto lead = static_cast<unsigned char>(byte);
        const bool isMark = lead == 0xCC || lead == 0xCD;
        return isMark || (lead >= 0xD5 && lead <= 0xE1) || lead == 0xEA || lead >= 0xEF;
    });
}

/// Whether some of the UTF-8 text's characters are of blocks with right-to-left scripts; some others may count as such.
bool mayHoldRightToLeft(std::string_view text) {
    for (std::size_t index = 0; index + 1 < text.size(); ++index) {
        const auto lead = static_cast<unsigned char>(text[index]);
        const auto next = static_cast<unsigned char>(text[index + 1]);
        const bool isBasic = (lead >= 0xD6 && lead <= 0xDF) || (lead == 0xE0 && next >= 0xA0 && next <= 0xA3);
        const bool isPresentationForm = lead == 0xEF && next >= 0xAC && next <= 0xBB && next != 0xB8;
        const bool isSupplementary = lead == 0xF0 && (next == 0x90 || next == 0x9E);
        if (isBasic || isPresentationForm || isSupplementary) {
            return true;
        }
    }
    return false;
}

/// Characters around a run that keep its direction. A run has one, found for the whole line: a renderer, which sees the
/// run alone, must not find another. Attributes for this are unknown to some viewers and misplace the run in others;
/// these characters are right in all of them.
struct DirectionControls {
    std::string_view mStart;
    std::string_view mEnd;
};

DirectionControls getDirectionControls(const Text& text) {
    constexpr std::string_view leftToRightOverride = "\xE2\x80\xAD";
    constexpr std::string_view rightToLeftOverride = "\xE2\x80\xAE";
    constexpr std::string_view endOfOverride = "\xE2\x80\xAC";
    // The mark keeps blanks at the run's end on its left.
    constexpr std::string_view markAndEndOfOverride = "\xE2\x80\x8F\xE2\x80\xAC";
    if (text.isRightToLeft()) {
        return {rightToLeftOverride, markAndEndOfOverride};
    }
    return mayHoldRightToLeft(text.getText()) ? DirectionControls{leftToRightOverride, endOfOverride}
                                              : DirectionControls{};
}

}  // namespace

bool SvgWriter::isColor(std::string_view text) {
    // Nothing that could refer to anything.
    constexpr std::size_t maxWordSize = 32;
    if (text.starts_with('#')) {
        const std::string_view digits = text.substr(1);
        return (digits.size() == 6 || digits.size() == 3) &&
               std::all_of(digits.begin(), digits.end(), [](char digit) { return encoding::hexValue(digit) >= 0; });
    }
    return !text.empty() && text.size() <= maxWordSize && std::all_of(text.begin(), text.end(), isLetter);
}

bool SvgWriter::isWritable(const ItemInterface& item) {
    return (!item.getTransform() || Affine(*item.getTransform()).isFinite()) && hasFiniteGeometry(item);
}

int getScaledDecimals(double scale) {
    // Rotations have a scale of 1 with the rounding of their sine and cosine.
    constexpr double rounding = 1e-6;
    const double digits = std::ceil(std::log10(scale) - rounding);
    return sCoordinateDecimals + static_cast<int>(std::clamp(digits, -3.0, 20.0));
}

ItemWriter::ItemWriter(TextBuffer& buffer, const SvgWriter::Options& options)
    : mBuffer(&buffer), mTextMode(options.mTextMode) {}

void ItemWriter::warn(Warning::Kind kind, std::string_view item, std::string_view problem) {
    mWarnings.push_back({kind, std::string(item).append(" was left out: ").append(problem)});
}

Paint ItemWriter::getPaint(const ItemInterface& item, const Paint& inherited) {
    Paint paint = inherited;
    const auto choose = [this](std::optional<std::string_view> own, std::string_view& color) {
        if (!own || isSameColor(*own, color)) {
            return;
        }
        if (SvgWriter::isColor(*own)) {
            color = *own;
        } else {
            warn(Warning::Kind::ColorUnknown, "a colour", "it is neither a word nor #RRGGBB");
        }
    };
    choose(item.getColor(), paint.mColor);
    choose(item.getOutlineColor(), paint.mOutlineColor);
    return paint;
}

ItemWriter::Placement ItemWriter::place(const Affine& map, double outerScale) {
    if (map.isTranslation()) {
        return {map.mX, map.mY, getDecimals(outerScale), false};
    }
    return {0.0, 0.0, getDecimals(outerScale * map.getScale()), true};
}

void ItemWriter::appendTransform(const Affine& map, double outerScale) {
    const int decimals = getDecimals(outerScale);
    char* out = mBuffer->reserve(sNumbersSize);
    if (map.isTranslation()) {
        out = putLiteral(out, " transform=\"translate(");
    } else {
        out = putLiteral(out, " transform=\"matrix(");
        for (const double factor : {map.mXx, map.mYx, map.mXy, map.mYy}) {
            out = formatFactor(out, factor);
            *out++ = ' ';
        }
    }
    out = putNumber(out, map.mX, decimals);
    *out++ = ' ';
    out = putNumber(out, map.mY, decimals);
    mBuffer->commit(putLiteral(out, ")\""));
}

char* ItemWriter::putPaint(char* out, const Paint& paint, const Paint& written) {
    if (!isSameColor(paint.mColor, written.mColor)) {
        out = putLiteral(out, " fill=\"");
        out = putText(out, paint.mColor);
        *out++ = '"';
    }
    if (!isSameColor(paint.mOutlineColor, written.mOutlineColor)) {
        out = putLiteral(out, " stroke=\"");
        out = putText(out, paint.mOutlineColor);
        *out++ = '"';
    }
    return out;
}

void ItemWriter::appendPaint(const Paint& paint, const Paint& written) {
    mBuffer->commit(putPaint(mBuffer->reserve(sNumbersSize), paint, written));
}

void ItemWriter::appendNames(const ItemInterface& item, std::string_view ownClass) {
    if (const std::optional<std::string_view> id = item.getId()) {
        const bool isTaken = PictureDefinitions::isReserved(*id) ||
                             (mTextMode == SvgWriter::TextMode::Outlines && GlyphDefinitions::isReserved(*id));
        if (!id->empty() && id->size() <= sMaxNameSize && !isTaken && mIds.emplace(*id).second) {
            mBuffer->append(" id=\"");
            appendXmlText(*mBuffer, *id, XmlContext::Attribute);
            mBuffer->append("\"");
        }
    }
    std::string_view classText = item.getClass().value_or(std::string_view());
    if (classText.size() > sMaxNameSize) {
        classText = {};
    }
    if (!ownClass.empty() || !classText.empty()) {
        mBuffer->append(" class=\"");
        mBuffer->append(ownClass);
        mBuffer->append(ownClass.empty() || classText.empty() ? "" : " ");
        appendXmlText(*mBuffer, classText, XmlContext::Attribute);
        mBuffer->append("\"");
    }
}

std::string_view ItemWriter::getOutlineClass(const ItemInterface& item, const Paint& paint) {
    const bool isScaled = item.getStyleOption() != ItemInterface::sStyleNonScalingStroke;
    return isScaled && paint.mOutlineColor != sNone ? "s" : "";
}

void ItemWriter::appendCommon(const ItemInterface& item, const Affine& map, const Placement& placement,
                              const Paint& paint, const WriteContext& context, std::string_view ownClass) {
    if (placement.mIsTransformed) {
        appendTransform(map, context.mScale);
    }
    appendPaint(paint, context.mWritten);
    appendNames(item, ownClass);
}

void ItemWriter::writeItem(const ItemInterface& item, const WriteContext& context) {
    const Affine map = item.getTransform() ? context.mMap * Affine(*item.getTransform()) : context.mMap;
    // A transform of the item's own that is not finite leaves its trace in the product.
    if (!hasFiniteGeometry(item) || !map.isFinite()) {
        warn(Warning::Kind::NumberNotFinite, getName(item.getKind()), sNotFinite);
        return;
    }
    const std::size_t start = mBuffer->getSize();
    switch (item.getKind()) {
        case ItemInterface::Kind::Rect:
            writeRect(static_cast<const Rect&>(item), map, context);
            break;
        case ItemInterface::Kind::Image:
            writeImage(static_cast<const Image&>(item), map, context);
            break;
        case ItemInterface::Kind::Path:
            writePath(static_cast<const Path&>(item), map, context);
            break;
        case ItemInterface::Kind::Text:
            writeText(static_cast<const Text&>(item), map, context);
            break;
        case ItemInterface::Kind::Node:
            break;
    }
    if (mBuffer->getSize() - start > SvgWriter::sMaxElementSize) {
        mBuffer->truncate(start);
        warn(Warning::Kind::ElementTooLong, getName(item.getKind()), "it is longer than 10,000,000 bytes");
    }
}

void ItemWriter::appendBox(std::string_view start, const Wm4::Vector2<float>& position, const Wm4::Vector2<float>& size,
                           const Placement& placement) {
    char* out = putText(mBuffer->reserve(sNumbersSize), start);
    out = putLiteral(out, " x=\"");
    out = putNumber(out, getLower(position.x, size.x) + placement.mX, placement.mDecimals);
    out = putLiteral(out, "\" y=\"");
    out = putNumber(out, getLower(position.y, size.y) + placement.mY, placement.mDecimals);
    out = putLiteral(out, "\" width=\"");
    out = putNumber(out, std::abs(static_cast<double>(size.x)), placement.mDecimals);
    out = putLiteral(out, "\" height=\"");
    out = putNumber(out, std::abs(static_cast<double>(size.y)), placement.mDecimals);
    *out++ = '"';
    mBuffer->commit(out);
}

void ItemWriter::writeRect(const Rect& rect, const Affine& map, const WriteContext& context) {
    if (!rect.isVisible()) {
        return;
    }
    const Placement placement = place(map, context.mScale);
    const Paint paint = getPaint(rect, context.mInherited);
    mReadability.addFill(paint.mColor, rect, context.mMap);
    appendBox("<rect", rect.getPosition(), rect.getSize(), placement);
    appendCommon(rect, map, placement, paint, context, getOutlineClass(rect, paint));
    mBuffer->append("/>\n");
}

bool ItemWriter::isPictureBackground(const ItemInterface& item, const ItemInterface& next) {
    if (item.getKind() != ItemInterface::Kind::Rect || next.getKind() != ItemInterface::Kind::Image) {
        return false;
    }
    const auto& rect = static_cast<const Rect&>(item);
    const auto& image = static_cast<const Image&>(next);
    return rect.getPosition() == image.getPosition() && rect.getSize() == image.getSize() &&
           rect.getTransform() == image.getTransform() && hasFiniteGeometry(image) &&
           mPictures.define(image.getSource()).mProblem == nullptr;
}

void ItemWriter::writeImage(const Image& image, const Affine& map, const WriteContext& context) {
    const PictureDefinitions::Entry picture = mPictures.define(image.getSource());
    if (picture.mProblem != nullptr) {
        warn(picture.mProblem->mKind, getName(image.getKind()), picture.mProblem->mText);
        return;
    }
    if (picture.mIsDamaged) {
        mWarnings.push_back({Warning::Kind::PictureDamaged,
                             "the picture of an image is cut or damaged: readers may show a part of it, or nothing"});
    }
    mReadability.addUnknown();
    const auto width = std::abs(static_cast<double>(image.getSize().x));
    const auto height = std::abs(static_cast<double>(image.getSize().y));
    if (width == 0.0 || height == 0.0) {
        return;
    }
    const Affine box(width, 0.0, 0.0, height, getLower(image.getPosition().x, image.getSize().x),
                     getLower(image.getPosition().y, image.getSize().y));
    char* out = putLiteral(mBuffer->reserve(sNumbersSize), "<use xlink:href=\"#p");
    out = formatNumber(out, picture.mNumber, 0);
    *out++ = '"';
    mBuffer->commit(out);
    appendTransform(map * box, context.mScale);
    appendNames(image);
    mBuffer->append("/>\n");
}

void ItemWriter::writePath(const Path& path, const Affine& map, const WriteContext& context) {
    if (path.isEmpty()) {
        return;
    }
    const Placement placement = place(map, context.mScale);
    const Paint paint = getPaint(path, context.mInherited);
    mReadability.addFill(paint.mColor, path, context.mMap);
    mBuffer->append("<path");
    appendCommon(path, map, placement, paint, context, getOutlineClass(path, paint));
    mBuffer->append(" d=\"");
    appendPathData(*mBuffer, path, placement.mX, placement.mY, placement.mDecimals);
    mBuffer->append("\"/>\n");
}

void ItemWriter::writeText(const Text& text, const Affine& map, const WriteContext& context) {
    if (text.getText().empty() || !(text.getSize() > 0.0F)) {
        return;
    }
    if (mTextMode == SvgWriter::TextMode::Outlines) {
        if (text.getGlyphSource()) {
            checkReadability(text, map, context);
            writeOutlines(text, map, context);
            return;
        }
        mWarnings.push_back({Warning::Kind::OutlinesMissing, "a text stays text: its glyphs have no outlines"});
    }
    checkReadability(text, map, context);
    const Placement placement = place(map, context.mScale);
    const TextScan scan = scanText(text.getText());
    char* out = putLiteral(mBuffer->reserve(sNumbersSize), "<text x=\"");
    out = putNumber(out, static_cast<double>(text.getPosition().x) + placement.mX, placement.mDecimals);
    out = putLiteral(out, "\" y=\"");
    out = putNumber(out, static_cast<double>(text.getPosition().y) + placement.mY, placement.mDecimals);
    *out++ = '"';
    if (text.getLength() > 0.0F) {
        out = putLiteral(out, " textLength=\"");
        out = putNumber(out, static_cast<double>(text.getLength()), placement.mDecimals);
        *out++ = '"';
        // Letters that join must be stretched themselves: spacing would tear them apart.
        if (!scan.mIsPlain && mayHoldJoiningLetters(text.getText())) {
            out = putLiteral(out, " lengthAdjust=\"spacingAndGlyphs\"");
        }
    }
    if (scan.mHasFragileBlanks) {
        out = putLiteral(out, " xml:space=\"preserve\"");
    }
    // Letters have no outline: groups give theirs to frames and lines.
    const Paint paint{getPaint(text, context.mInherited).mColor, sNone};
    const FontStyle& font = mFonts.find(text, placement.mDecimals);
    const std::string_view fontClass = &font == context.mFont ? std::string_view() : font.mClass;
    if (placement.mIsTransformed || text.getId() || text.getClass()) {
        mBuffer->commit(out);
        appendCommon(text, map, placement, paint, context, fontClass);
    } else {
        out = putPaint(out, paint, context.mWritten);
        if (!fontClass.empty()) {
            out = putLiteral(out, " class=\"");
            out = putText(out, fontClass);
            *out++ = '"';
        }
        mBuffer->commit(out);
    }
    if (scan.mIsPlain && text.getText().size() <= sShortTextSize && !text.isRightToLeft()) {
        out = mBuffer->reserve(sShortTextSize + sNumbersSize);
        *out++ = '>';
        out = putText(out, text.getText());
        mBuffer->commit(putLiteral(out, "</text>\n"));
    } else {
        const DirectionControls controls = getDirectionControls(text);
        mBuffer->append(">");
        mBuffer->append(controls.mStart);
        appendXmlText(*mBuffer, text.getText(), XmlContext::Content);
        mBuffer->append(controls.mEnd);
        mBuffer->append("</text>\n");
    }
}

void ItemWriter::checkReadability(const Text& text, const Affine& map, const WriteContext& context) {
    const std::string_view color = getPaint(text, context.mInherited).mColor;
    if (const std::string_view fill = mReadability.findUnreadable(color, text, map); !fill.empty()) {
        mWarnings.push_back(
            {Warning::Kind::TextUnreadable,
             std::string("text cannot be told from its fill: ").append(color).append(" on ").append(fill)});
    }
}

void ItemWriter::writeOutlines(const Text& text, const Affine& map, const WriteContext& context) {
    mPlacedGlyphs.clear();
    text.getGlyphSource()->appendGlyphs(text, mPlacedGlyphs);
    mGlyphs.keepOwner(text.getGlyphSource()->getOutlineOwner());
    if (mPlacedGlyphs.empty()) {
        return;
    }
    const auto runScale = static_cast<double>(mPlacedGlyphs.front().mScale);
    const Affine run = map * Affine(runScale, 0.0, 0.0, runScale, static_cast<double>(text.getPosition().x),
                                    static_cast<double>(text.getPosition().y));
    if (!(runScale > 0.0) || !run.isFinite()) {
        warn(Warning::Kind::NumberNotFinite, "a text", sNotFinite);
        return;
    }
    warnOfMissingGlyphs();
    const Paint paint{getPaint(text, context.mInherited).mColor, sNone};
    mBuffer->append("<g");
    appendTransform(run, context.mScale);
    appendPaint(paint, context.mWritten);
    appendNames(text);
    mBuffer->append(">\n");
    const int decimals = getDecimals(context.mScale * run.getScale());
    for (const PlacedGlyph& glyph : mPlacedGlyphs) {
        writeGlyph(glyph, runScale, decimals);
    }
    mBuffer->append("</g>\n");
}

/// Names the characters behind the boxes among the placed glyphs, each once per file.
void ItemWriter::warnOfMissingGlyphs() {
    std::string names;
    for (const PlacedGlyph& glyph : mPlacedGlyphs) {
        if (glyph.mMissing == 0 || !mMissingCharacters.insert(glyph.mMissing).second) {
            continue;
        }
        char code[16];
        std::snprintf(code, sizeof(code), "U+%04X", static_cast<unsigned>(glyph.mMissing));
        names.append(names.empty() ? "" : ", ").append(code);
        if (glyph.mMissing >= 0xA0 && !encoding::isNoncharacter(glyph.mMissing)) {
            names.append(" ");
            encoding::appendUtf8(glyph.mMissing, names);
        }
    }
    if (!names.empty()) {
        mWarnings.push_back({Warning::Kind::GlyphMissing, "boxes stand for characters that no installed font has (" +
                                                              names +
                                                              "); install one that has them, or draw text as text"});
    }
}

void ItemWriter::writeGlyph(const PlacedGlyph& glyph, double runScale, int decimals) {
    const double scale = static_cast<double>(glyph.mScale) / runScale;
    const double x = static_cast<double>(glyph.mPosition.x) / runScale;
    const double y = static_cast<double>(glyph.mPosition.y) / runScale;
    if (!std::isfinite(x + y + scale)) {
        warn(Warning::Kind::NumberNotFinite, "a glyph", sNotFinite);
        return;
    }
    const unsigned number = glyph.mOutline != nullptr ? mGlyphs.define(*glyph.mOutline) : 0;
    if (number == 0) {
        return;
    }
    char* out = putLiteral(mBuffer->reserve(sNumbersSize), "<use xlink:href=\"#g");
    out = formatNumber(out, number, 0);
    *out++ = '"';
    if (scale == 1.0) {
        out = putLiteral(out, " x=\"");
        out = putNumber(out, x, decimals);
        if (y != 0.0) {
            out = putLiteral(out, "\" y=\"");
            out = putNumber(out, y, decimals);
        }
        *out++ = '"';
        mBuffer->commit(out);
    } else {
        mBuffer->commit(out);
        appendTransform(Affine(scale, 0.0, 0.0, scale, x, y), std::pow(10.0, decimals - sCoordinateDecimals));
    }
    mBuffer->append("/>\n");
}

}  // namespace kt::svg
