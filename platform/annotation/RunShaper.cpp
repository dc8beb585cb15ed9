#include "platform/annotation/RunShaper_p.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace kt::text {

namespace {

/// Runs longer than this hardly come twice.
constexpr std::size_t sMaxRememberedLength = 256;
/// Characters of all remembered runs together; some 40 MB.
constexpr std::size_t sMaxRememberedCount = 1'000'000;
/// How many characters on each side of a run HarfBuzz looks at.
constexpr std::size_t sContextLength = 5;

}  // namespace

RunShaper::RunShaper() : mBuffer(hb_buffer_create()) {}

RunShaper::~RunShaper() { hb_buffer_destroy(mBuffer); }

const ShapedRun& RunShaper::shape(const RunRequest& request) {
    if (request.mLength > sMaxRememberedLength) {
        shapeInto(request, mLongRun);
        return mLongRun;
    }
    makeKey(request);
    if (const auto known = mRuns.find(mKey); known != mRuns.end()) {
        return known->second;
    }
    if (mRememberedCount + mKey.size() > sMaxRememberedCount) {
        clear();
    }
    mRememberedCount += mKey.size();
    ShapedRun& run = mRuns[mKey];
    shapeInto(request, run);
    return run;
}

void RunShaper::clear() {
    mRuns.clear();
    mRememberedCount = 0;
}

void RunShaper::makeKey(const RunRequest& request) {
    const auto address = std::bit_cast<std::uintptr_t>(request.mFont);
    const std::size_t before = std::min(request.mStart, sContextLength);
    const std::size_t end = request.mStart + request.mLength;
    const std::size_t after = std::min(request.mLine.size() - end, sContextLength);
    mKey.clear();
    mKey.push_back(static_cast<char32_t>(address & 0xFFFFFFFFU));
    mKey.push_back(static_cast<char32_t>(address >> 32));
    mKey.push_back(static_cast<char32_t>(request.mScript));
    mKey.push_back(static_cast<char32_t>((request.mIsRightToLeft ? 0x100U : 0U) | (before << 4) | after));
    mKey.append(request.mLine.substr(request.mStart - before, before + request.mLength + after));
}

void RunShaper::shapeInto(const RunRequest& request, ShapedRun& run) {
    hb_buffer_clear_contents(mBuffer);
    hb_buffer_set_direction(mBuffer, request.mIsRightToLeft ? HB_DIRECTION_RTL : HB_DIRECTION_LTR);
    hb_buffer_set_script(mBuffer, request.mScript);
    // Only the nearest neighbours are handed over, whatever the line's length.
    const std::size_t before = std::min(request.mStart, sContextLength);
    const std::size_t end = request.mStart + request.mLength;
    const std::size_t after = std::min(request.mLine.size() - end, sContextLength);
    const std::u32string_view text = request.mLine.substr(request.mStart - before, before + request.mLength + after);
    hb_buffer_add_codepoints(mBuffer, reinterpret_cast<const hb_codepoint_t*>(text.data()),
                             static_cast<int>(text.size()), static_cast<unsigned>(before),
                             static_cast<int>(request.mLength));
    hb_shape(request.mFont->getShapingFont(), mBuffer, nullptr, 0);

    unsigned count = 0;
    const hb_glyph_info_t* infos = hb_buffer_get_glyph_infos(mBuffer, &count);
    const hb_glyph_position_t* positions = hb_buffer_get_glyph_positions(mBuffer, &count);
    run = {};
    run.mGlyphs.reserve(count);
    for (unsigned index = 0; index < count; ++index) {
        const hb_glyph_position_t& position = positions[index];
        // What is raised moves along with a slanted letter.
        const auto slant = static_cast<std::int64_t>(std::lround(request.mFont->getSlant() * position.y_offset));
        ShapedGlyph glyph{infos[index].codepoint, run.mAdvance + position.x_offset + slant, position.y_offset};
        glyph.mMissing = glyph.mGlyph == 0 ? text[infos[index].cluster] : 0;
        run.mInk.addBox(request.mFont->getInkBox(glyph.mGlyph)
                            .makeMoved(static_cast<double>(glyph.mX), static_cast<double>(glyph.mY)));
        run.mGlyphs.push_back(glyph);
        run.mAdvance += position.x_advance;
    }
}

}  // namespace kt::text
