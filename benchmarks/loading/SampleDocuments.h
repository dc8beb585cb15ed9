#pragma once

/// @file
/// Realistic documents for the benchmark, made in memory.

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ktBenchmark {

struct SampleLeader {
    std::array<float, 3> mPosition;
    int mHead;  ///< as streams store it
};

struct SampleSegment {
    std::string_view mText;
    int mType;  ///< as streams store it
};

/// A callout of a mechanical drawing: 3 lines of 3 segments, 1 or 2 leaders, a child for every fourth.
struct SampleAnnotation {
    std::string mName;
    std::array<float, 3> mPosition{};
    std::uint32_t mColor = 0;
    int mFrameShape = 0;
    int mHeight = 0;  ///< hundredths of an em
    std::vector<SampleLeader> mLeaders;
    std::array<std::array<SampleSegment, 3>, 3> mLines{};
    std::vector<SampleAnnotation> mChildren;
};

using SampleView = std::vector<SampleAnnotation>;

/// The same numbers always give the same view. Children come on top of count.
SampleView makeSampleView(int number, int count);

/// Appends the view's record as a stream of version 6.27 holds it.
void appendBinary(const SampleView& view, std::string& bytes);
/// Appends the view as a variant document of version 6.27.
void appendJson(const SampleView& view, std::string& text);

}  // namespace ktBenchmark
