#include "platform/annotation/Characters_p.h"
#include "platform/annotation/FontCatalog_p.h"
#include "platform/annotation/TextLayout_p.h"
#include "platform/encoding/Utf8.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <span>

namespace kt::text {

namespace {

/// Size of sub- and superscripts relative to the text around them.
constexpr float sScriptScale = 0.63F;
/// Families and styles that a layout remembers from block to block.
constexpr std::size_t sMaxRememberedStyles = 64;
/// Families and styles within a block; looking one up takes a millisecond. More of them are shown in the block's own.
constexpr std::size_t sMaxStyles = 256;
/// Blocks larger than this cannot be told in single precision any more.
constexpr double sMaxExtent = 1.0e30;

/// Text of no size is laid out at this one, far below what can be seen: beside text that has a size it stays in the
/// drawing and can be found there.
constexpr float sMinSize = 0.001F;

bool hasSize(const TextProperties& properties) {
    return std::isfinite(properties.mFontSize) && properties.mFontSize > 0.0F;
}

/// Makes the line high enough for text of that font, size and shift.
void addHeight(const FontMetrics& metrics, double size, double shift, LaidOutLine& line) {
    line.mAscent = std::max(line.mAscent, shift + static_cast<double>(metrics.mAscent) * size);
    line.mDescent = std::max(line.mDescent, static_cast<double>(metrics.mDescent) * size - shift);
    line.mGap = std::max(line.mGap, static_cast<double>(metrics.mLineGap) * size);
}

/// Puts runs into visual order: whatever runs from right to left is reversed, the deepest levels first.
void reorder(const std::vector<LaidOutRun>& runs, std::vector<std::size_t>& order) {
    int highest = 0;
    int lowestOdd = std::numeric_limits<std::int8_t>::max();
    for (const std::size_t index : order) {
        const int level = runs[index].mLevel;
        highest = std::max(highest, level);
        lowestOdd = (level & 1) != 0 ? std::min(lowestOdd, level) : lowestOdd;
    }
    for (int level = highest; level >= lowestOdd; --level) {
        const auto isBelow = [&](std::size_t index) { return runs[index].mLevel < level; };
        const auto isAbove = [&](std::size_t index) { return runs[index].mLevel >= level; };
        for (auto begin = std::find_if(order.begin(), order.end(), isAbove); begin != order.end();) {
            const auto end = std::find_if(begin, order.end(), isBelow);
            std::reverse(begin, end);
            begin = std::find_if(end, order.end(), isAbove);
        }
    }
}

}  // namespace

bool TextLayout::layOut(const TextArea& area) {
    if (mFonts.size() > sMaxRememberedStyles) {
        std::vector<FontProblem> problems;
        takeFontProblems(problems);
        mFormerProblems = std::move(problems);
        mShaper.clear();
        mFonts.clear();
        mLastFonts = nullptr;
    }
    mLines.clear();
    mRuns.clear();
    mWidth = 0.0;
    mHeight = 0.0;
    mDefaultFonts = &findFonts(area.mDefaultProperties);
    for (const TextArea::Line& line : area.mLines) {
        if (!layOutLine(area, line)) {
            return false;
        }
    }
    for (std::size_t index = 0; index < mLines.size(); ++index) {
        const LaidOutLine& line = mLines[index];
        mWidth = std::max(mWidth, line.mWidth);
        mHeight += line.mAscent + line.mDescent + (index + 1 < mLines.size() ? line.mGap : 0.0);
    }
    return mWidth < sMaxExtent && mHeight < sMaxExtent;
}

void TextLayout::takeFontProblems(std::vector<FontProblem>& problems) {
    problems.insert(problems.end(), mFormerProblems.begin(), mFormerProblems.end());
    mFormerProblems.clear();
    for (const auto& [key, fonts] : mFonts) {
        if (fonts->takeUse()) {
            fonts->getStack()->appendProblems(problems);
        }
    }
    // The next use must be seen again.
    mLastFonts = nullptr;
}

bool TextLayout::hasExtent() const {
    return mHeight > 0.0 && std::ranges::any_of(mRuns, [](const LaidOutRun& run) {
               const bool isSeen = run.mExtent.mAdvance > 0.0 || run.mExtent.mInkRight > run.mExtent.mInkLeft;
               return isSeen && hasSize(*run.mProperties);
           });
}

bool TextLayout::layOutLine(const TextArea& area, const TextArea::Line& line) {
    LaidOutLine laidOut;
    laidOut.mFirstRun = mRuns.size();
    mStyles.clear();
    for (const TextSegment& segment : line) {
        mStyles.push_back(makeStyle(area, &segment));
    }
    if (line.empty()) {
        mStyles.push_back(makeStyle(area, nullptr));
    }
    for (const SegmentStyle& style : mStyles) {
        if (style.mFonts->getMainFont() == nullptr) {
            return false;
        }
        addHeight(style.mFonts->getMainFont()->getMetrics(), static_cast<double>(style.mSize), style.mShift, laidOut);
    }
    if (!layOutSimpleLine(line)) {
        mRuns.resize(laidOut.mFirstRun);
        if (!layOutAnyLine(line, laidOut)) {
            return false;
        }
    }
    laidOut.mRunCount = mRuns.size() - laidOut.mFirstRun;
    placeRuns(laidOut);
    mLines.push_back(laidOut);
    return true;
}

bool TextLayout::layOutSimpleLine(const TextArea::Line& line) {
    for (std::size_t index = 0; index < line.size(); ++index) {
        const std::string& text = line[index].getText();
        if (text.empty()) {
            continue;
        }
        const SegmentStyle& style = mStyles[index];
        LaidOutRun& run = addRun(style);
        if (!style.mFonts->measureSimple(text, run.mExtent)) {
            return false;
        }
        run.mSegmentText = &text;
        run.mGlyphs = style.mFonts->getSimpleGlyphs();
    }
    return true;
}

bool TextLayout::layOutAnyLine(const TextArea::Line& line, LaidOutLine& laidOut) {
    mCharacters.clear();
    for (const TextSegment& segment : line) {
        appendShownCharacters(segment.getText(), mCharacters);
    }
    if (mCharacters.size() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()) ||
        !mLevels.find(mCharacters)) {
        return false;
    }
    laidOut.mIsRightToLeft = mLevels.isRightToLeft();
    findScripts(mCharacters, mScripts);

    std::size_t start = 0;
    std::u32string segmentCharacters;
    for (std::size_t index = 0; index < line.size(); ++index) {
        segmentCharacters.clear();
        appendShownCharacters(line[index].getText(), segmentCharacters);
        const std::size_t segmentEnd = start + segmentCharacters.size();
        while (start < segmentEnd) {
            std::size_t end = start + 1;
            while (end < segmentEnd && mLevels.getLevel(end) == mLevels.getLevel(start)) {
                ++end;
            }
            layOutDirectionRun(mStyles[index], start, end - start);
            start = end;
        }
    }
    return true;
}

void TextLayout::layOutDirectionRun(const SegmentStyle& style, std::size_t start, std::size_t length) {
    LaidOutRun& run = addRun(style);
    run.mLevel = mLevels.getLevel(start);
    run.mShownText = encoding::toUtf8(std::u32string_view(mCharacters).substr(start, length));
    shapePieces(*style.mFonts, start, length, run);
}

void TextLayout::shapePieces(StyleFonts& fonts, std::size_t start, std::size_t length, LaidOutRun& run) {
    const std::u32string_view line = mCharacters;
    const std::size_t end = start + length;
    const bool isRightToLeft = (run.mLevel & 1) != 0;
    std::vector<RunRequest> pieces;
    for (std::size_t position = start; position < end;) {
        const std::size_t clusterLength = std::min(getClusterLength(line, position), end - position);
        const Font* font = fonts.findFont(line.substr(position, clusterLength));
        if (pieces.empty() || pieces.back().mFont != font || pieces.back().mScript != mScripts[position] ||
            !startsCluster(line, position)) {
            pieces.push_back({font, mScripts[position], isRightToLeft, line, position, 0});
        }
        pieces.back().mLength += clusterLength;
        position += clusterLength;
    }
    if (isRightToLeft) {
        std::ranges::reverse(pieces);
    }

    std::vector<PlacedGlyphs::Glyph> glyphs;
    for (const RunRequest& piece : pieces) {
        const std::u32string_view text = line.substr(piece.mStart, piece.mLength);
        const bool isSimple = !isRightToLeft && fonts.placeSimple(text, piece.mScript, mSimpleRun);
        const ShapedRun& shaped = isSimple ? mSimpleRun : mShaper.shape(piece);
        const double unitsPerEm = piece.mFont->getUnitsPerEm();
        for (const ShapedGlyph& glyph : shaped.mGlyphs) {
            const double x = run.mExtent.mAdvance + static_cast<double>(glyph.mX) / unitsPerEm;
            const double y = -static_cast<double>(glyph.mY) / unitsPerEm;
            glyphs.push_back(
                {piece.mFont, glyph.mGlyph, glyph.mMissing, {static_cast<float>(x), static_cast<float>(y)}});
        }
        fonts.addPiece(*piece.mFont, shaped.mAdvance, shaped.mInk, run.mExtent);
    }
    run.mGlyphs = std::make_shared<PlacedGlyphs>(fonts.getStack(), std::move(glyphs));
}

void TextLayout::placeRuns(LaidOutLine& line) {
    const std::span<LaidOutRun> runs = std::span(mRuns).subspan(line.mFirstRun, line.mRunCount);
    if (std::ranges::all_of(runs, [](const LaidOutRun& run) { return run.mLevel == 0; })) {
        for (LaidOutRun& run : runs) {
            placeRun(run, line);
        }
    } else {
        mOrder.resize(line.mRunCount);
        std::iota(mOrder.begin(), mOrder.end(), line.mFirstRun);
        reorder(mRuns, mOrder);
        for (const std::size_t index : mOrder) {
            placeRun(mRuns[index], line);
        }
    }
    if (line.mWidth <= 0.0) {
        widenToInk(runs, line);
    }
}

/// Marks without a base letter do not advance; they take the place of their ink.
void TextLayout::widenToInk(std::span<LaidOutRun> runs, LaidOutLine& line) {
    double left = 0.0;
    double right = 0.0;
    for (const LaidOutRun& run : runs) {
        left = std::min(left, run.mExtent.mInkLeft * static_cast<double>(run.mSize));
        right = std::max(right, run.mExtent.mInkRight * static_cast<double>(run.mSize));
    }
    for (LaidOutRun& run : runs) {
        run.mX -= left;
    }
    line.mWidth = right - left;
}

void TextLayout::placeRun(LaidOutRun& run, LaidOutLine& line) {
    run.mX = line.mWidth;
    line.mWidth += run.getAdvance();
    const auto size = static_cast<double>(run.mSize);
    line.mAscent = std::max(line.mAscent, run.mShift + run.mExtent.mSubstituteTop * size);
    line.mDescent = std::max(line.mDescent, -run.mShift - run.mExtent.mSubstituteBottom * size);
}

TextLayout::SegmentStyle TextLayout::makeStyle(const TextArea& area, const TextSegment* segment) {
    SegmentStyle style;
    style.mHasOwnProperties = segment != nullptr && segment->getProperties().has_value();
    style.mProperties = style.mHasOwnProperties ? &*segment->getProperties() : &area.mDefaultProperties;
    style.mFonts = style.mHasOwnProperties ? &findFonts(*style.mProperties) : mDefaultFonts;
    style.mSize = hasSize(*style.mProperties) ? std::max(style.mProperties->mFontSize, sMinSize) : sMinSize;
    const Font* font = style.mFonts->getMainFont();
    if (segment == nullptr || segment->getType() == TextSegment::Normal || font == nullptr) {
        return style;
    }
    const bool isSubscript = segment->getType() == TextSegment::Subscript;
    const FontMetrics& metrics = font->getMetrics();
    style.mShift = static_cast<double>(isSubscript ? -metrics.mSubscriptDrop : metrics.mSuperscriptRise) *
                   static_cast<double>(style.mSize);
    style.mSize *= sScriptScale;
    return style;
}

StyleFonts& TextLayout::findFonts(const TextProperties& properties) {
    const unsigned styleBits = properties.mStyle & (TextProperties::sBold | TextProperties::sItalic);
    const char styleCharacter = static_cast<char>('0' + styleBits);
    const std::string& name = properties.mFontName;
    // Most texts of a drawing are of one style.
    if (mLastFonts != nullptr && mFontsKey.size() == name.size() + 1 && mFontsKey.back() == styleCharacter &&
        mFontsKey.starts_with(name)) {
        return *mLastFonts;
    }
    mFontsKey.assign(name);
    mFontsKey.push_back(styleCharacter);
    mLastFonts = nullptr;
    auto known = mFonts.find(mFontsKey);
    if (known == mFonts.end()) {
        if (mFonts.size() >= sMaxStyles) {
            return *mDefaultFonts;
        }
        auto fonts = std::make_unique<StyleFonts>(FontCatalog::getInstance().getStack(name, styleBits));
        known = mFonts.emplace(mFontsKey, std::move(fonts)).first;
    }
    mLastFonts = known->second.get();
    mLastFonts->markUse();
    return *mLastFonts;
}

LaidOutRun& TextLayout::addRun(const SegmentStyle& style) {
    LaidOutRun& run = mRuns.emplace_back();
    run.mProperties = style.mProperties;
    run.mHasOwnProperties = style.mHasOwnProperties;
    run.mSize = style.mSize;
    run.mShift = style.mShift;
    run.mMetrics = &style.mFonts->getMainFont()->getMetrics();
    return run;
}

}  // namespace kt::text
