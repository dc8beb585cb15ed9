#pragma once

/// @file
/// Where the runs of a text block stand.

#include "platform/annotation/LineAnalysis_p.h"
#include "platform/annotation/LineLevels_p.h"
#include "platform/annotation/RunGlyphs_p.h"
#include "platform/annotation/RunShaper_p.h"
#include "platform/annotation/StyleFonts_p.h"
#include "platform/annotation/TextArea.h"

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kt::text {

/// Characters of one segment in one direction. Lengths are drawing units, y up.
struct LaidOutRun {
    const TextProperties* mProperties = nullptr;
    bool mHasOwnProperties = false;
    const std::string* mSegmentText = nullptr;  ///< the text, when it is the whole of its segment's
    std::string mShownText;                     ///< else the text
    int mLevel = 0;                             ///< of nesting directions, odd from right to left
    float mSize = 0.0F;
    double mX = 0.0;      ///< left edge, from the line's left edge
    double mShift = 0.0;  ///< base line above the line's
    const FontMetrics* mMetrics = nullptr;
    RunExtent mExtent;  ///< in ems of mSize
    std::shared_ptr<const svg::GlyphSource> mGlyphs;

    std::string_view getText() const { return mSegmentText != nullptr ? *mSegmentText : mShownText; }
    double getAdvance() const { return mExtent.mAdvance * static_cast<double>(mSize); }
};

/// A line of runs. Lengths are drawing units.
struct LaidOutLine {
    std::size_t mFirstRun = 0;
    std::size_t mRunCount = 0;
    double mWidth = 0.0;
    double mAscent = 0.0;
    double mDescent = 0.0;
    double mGap = 0.0;
    bool mIsRightToLeft = false;
};

/// Lays text blocks out, one after the other. For one thread.
class TextLayout {
public:
    /// Lays out the area, which must outlive the use of the results; false when that is not possible.
    bool layOut(const TextArea& area);

    const std::vector<LaidOutLine>& getLines() const { return mLines; }
    /// Runs of all lines, in logical order within a line.
    std::vector<LaidOutRun>& editRuns() { return mRuns; }
    /// Appends what kept fonts from being used for the blocks since the last call.
    void takeFontProblems(std::vector<FontProblem>& problems);
    /// Whether anything of the block can be seen: text of no size cannot.
    bool hasExtent() const;
    double getWidth() const { return mWidth; }
    double getHeight() const { return mHeight; }

private:
    struct SegmentStyle {
        const TextProperties* mProperties = nullptr;
        bool mHasOwnProperties = false;
        StyleFonts* mFonts = nullptr;
        float mSize = 0.0F;
        double mShift = 0.0;
    };

    bool layOutLine(const TextArea& area, const TextArea::Line& line);
    bool layOutSimpleLine(const TextArea::Line& line);
    bool layOutAnyLine(const TextArea::Line& line, LaidOutLine& laidOut);
    void layOutDirectionRun(const SegmentStyle& style, std::size_t start, std::size_t length);
    void shapePieces(StyleFonts& fonts, std::size_t start, std::size_t length, LaidOutRun& run);
    void placeRuns(LaidOutLine& line);
    static void widenToInk(std::span<LaidOutRun> runs, LaidOutLine& line);
    /// Puts the run at the end of the line.
    static void placeRun(LaidOutRun& run, LaidOutLine& line);
    SegmentStyle makeStyle(const TextArea& area, const TextSegment* segment);
    StyleFonts& findFonts(const TextProperties& properties);
    LaidOutRun& addRun(const SegmentStyle& style);

    std::unordered_map<std::string, std::unique_ptr<StyleFonts>> mFonts;
    std::string mFontsKey;                     ///< of the fonts found last
    StyleFonts* mLastFonts = nullptr;          ///< null: none since the fonts were forgotten
    StyleFonts* mDefaultFonts = nullptr;       ///< of the area at work
    std::vector<FontProblem> mFormerProblems;  ///< of fonts that are forgotten, since the last call
    RunShaper mShaper;

    std::vector<LaidOutLine> mLines;
    std::vector<LaidOutRun> mRuns;
    double mWidth = 0.0;
    double mHeight = 0.0;

    // Of the line at work.
    std::vector<SegmentStyle> mStyles;
    std::u32string mCharacters;
    LineLevels mLevels;
    std::vector<hb_script_t> mScripts;
    ShapedRun mSimpleRun;
    std::vector<std::size_t> mOrder;
};

}  // namespace kt::text
