#pragma once

/// @file
/// Shaping of runs.

#include "platform/annotation/Font_p.h"

#include <hb.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kt::text {

/// A glyph with its origin relative to the run's start, in font units, y up.
struct ShapedGlyph {
    bool operator==(const ShapedGlyph&) const = default;

    hb_codepoint_t mGlyph = 0;
    std::int64_t mX = 0;
    std::int64_t mY = 0;
    char32_t mMissing = 0;  ///< the character, when the font has no glyph for it
};

/// What shaping a run gives, in font units; glyphs from left to right.
struct ShapedRun {
    std::int64_t mAdvance = 0;
    InkBox mInk;
    std::vector<ShapedGlyph> mGlyphs;
};

/// Characters of one font, script and direction within their line.
struct RunRequest {
    const Font* mFont = nullptr;
    hb_script_t mScript = HB_SCRIPT_LATIN;
    bool mIsRightToLeft = false;
    std::u32string_view mLine;  ///< the whole line: letters join across the run's ends
    std::size_t mStart = 0;
    std::size_t mLength = 0;
};

/// Shapes runs with HarfBuzz and remembers them, up to a fixed amount. For one thread. The fonts of all requests must
/// outlive the shaper.
class RunShaper {
public:
    RunShaper();
    RunShaper(const RunShaper&) = delete;
    RunShaper& operator=(const RunShaper&) = delete;
    ~RunShaper();

    /// Valid until the next call.
    const ShapedRun& shape(const RunRequest& request);
    /// Forgets all runs: their fonts need not be kept any longer.
    void clear();

private:
    void makeKey(const RunRequest& request);
    void shapeInto(const RunRequest& request, ShapedRun& run);

    hb_buffer_t* mBuffer;
    std::u32string mKey;
    ShapedRun mLongRun;
    std::unordered_map<std::u32string, ShapedRun> mRuns;
    std::size_t mRememberedCount = 0;  ///< characters of all remembered keys
};

}  // namespace kt::text
