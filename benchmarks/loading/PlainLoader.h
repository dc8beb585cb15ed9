#pragma once

/// @file
/// What a binary view record holds, in plain standard containers, and a straightforward loader of it.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace ktBenchmark {

struct PlainLeader {
    float mPosition[3];
    std::uint8_t mHead;
};

struct PlainMeasureLeader {
    float mPointA[3];
    float mPointB[3];
    float mOffset[3];
    std::uint8_t mArrows;
};

struct PlainProperties {
    std::string mFontName;
    std::uint16_t mHeight;
    std::uint8_t mStyle;
    std::uint8_t mReserved;
};

struct PlainSegment {
    std::string mText;
    std::uint8_t mType;
    std::unique_ptr<PlainProperties> mProperties;
};

struct PlainAnnotation;

struct PlainChild {
    std::uint8_t mAnchor;
    std::unique_ptr<PlainAnnotation> mAnnotation;
};

struct PlainAnnotation {
    std::string mName;
    std::vector<PlainLeader> mLeaders;
    std::vector<PlainMeasureLeader> mMeasureLeaders;
    float mPosition[3];
    std::uint8_t mColor[3];
    std::uint8_t mFlags;
    std::vector<PlainChild> mChildren;
    PlainProperties mProperties;
    std::vector<std::vector<PlainSegment>> mLines;
};

struct PlainView {
    std::string mName;
    float mOrigin[3];
    float mNormal[3];
    float mAxis[3];
    std::vector<PlainAnnotation> mAnnotations;
};

/// Loads a record of text annotations without metadata, of version 6.27. False when the bytes do not hold one.
bool loadPlainView(std::span<const std::byte> bytes, PlainView& view);

}  // namespace ktBenchmark
