#include "benchmarks/loading/PlainLoader.h"

#include <cstring>

namespace ktBenchmark {

namespace {

class Reader {
public:
    explicit Reader(std::span<const std::byte> bytes) : mCursor(bytes.data()), mEnd(mCursor + bytes.size()) {}

    bool isGood() const { return mIsGood; }

    template <typename Value>
    void read(Value& value) {
        readBytes(&value, sizeof(value));
    }

    template <typename Number>
    Number readNumber() {
        Number number{};
        read(number);
        return number;
    }

    /// A number of elements of at least minSize bytes each.
    std::size_t readCount(std::size_t minSize) {
        const std::size_t count = readNumber<std::uint32_t>();
        return count * minSize <= getRemaining() ? count : fail();
    }

    void readText(std::string& text, std::size_t size) {
        if (size <= getRemaining()) {
            text.assign(reinterpret_cast<const char*>(mCursor), size);
            mCursor += size;
        } else {
            fail();
        }
    }

    void readText(std::string& text) { readText(text, readNumber<std::uint32_t>()); }

    std::size_t fail() {
        mIsGood = false;
        mCursor = mEnd;
        return 0;
    }

private:
    std::size_t getRemaining() const { return static_cast<std::size_t>(mEnd - mCursor); }

    void readBytes(void* destination, std::size_t size) {
        if (size <= getRemaining()) {
            std::memcpy(destination, mCursor, size);
            mCursor += size;
        } else {
            fail();
        }
    }

    const std::byte* mCursor;
    const std::byte* mEnd;
    bool mIsGood = true;
};

void loadProperties(Reader& reader, PlainProperties& properties) {
    reader.readText(properties.mFontName);
    reader.read(properties.mHeight);
    reader.read(properties.mStyle);
    reader.read(properties.mReserved);
}

void loadSegment(Reader& reader, PlainSegment& segment) {
    reader.readText(segment.mText, reader.readNumber<std::uint16_t>());
    reader.read(segment.mType);
    if (reader.readNumber<std::uint8_t>() != 0) {
        segment.mProperties = std::make_unique<PlainProperties>();
        loadProperties(reader, *segment.mProperties);
    }
}

void loadAnnotation(Reader& reader, PlainAnnotation& annotation) {
    reader.readText(annotation.mName);
    annotation.mLeaders.resize(reader.readCount(13));
    for (PlainLeader& leader : annotation.mLeaders) {
        reader.read(leader.mPosition);
        reader.read(leader.mHead);
    }
    annotation.mMeasureLeaders.resize(reader.readCount(37));
    for (PlainMeasureLeader& measure : annotation.mMeasureLeaders) {
        reader.read(measure.mPointA);
        reader.read(measure.mPointB);
        reader.read(measure.mOffset);
        reader.read(measure.mArrows);
    }
    reader.read(annotation.mPosition);
    reader.read(annotation.mColor);
    reader.read(annotation.mFlags);
    annotation.mChildren.resize(reader.readCount(2));
    for (PlainChild& child : annotation.mChildren) {
        reader.read(child.mAnchor);
        if (reader.readNumber<std::uint8_t>() == 1) {
            child.mAnnotation = std::make_unique<PlainAnnotation>();
            loadAnnotation(reader, *child.mAnnotation);
        } else {
            reader.fail();
        }
    }
    if (reader.readNumber<std::uint32_t>() != 0) {
        reader.fail();  // metadata
    }
    loadProperties(reader, annotation.mProperties);
    annotation.mLines.resize(reader.readCount(4));
    for (std::vector<PlainSegment>& line : annotation.mLines) {
        line.resize(reader.readCount(4));
        for (PlainSegment& segment : line) {
            loadSegment(reader, segment);
        }
    }
}

}  // namespace

bool loadPlainView(std::span<const std::byte> bytes, PlainView& view) {
    Reader reader(bytes);
    reader.readText(view.mName);
    reader.read(view.mOrigin);
    reader.read(view.mNormal);
    reader.read(view.mAxis);
    view.mAnnotations.resize(reader.readCount(45));
    if (reader.readNumber<std::uint32_t>() != 0) {
        reader.fail();  // raster annotations
    }
    for (PlainAnnotation& annotation : view.mAnnotations) {
        loadAnnotation(reader, annotation);
    }
    return reader.isGood() && reader.readNumber<std::uint32_t>() == 0 && reader.isGood();
}

}  // namespace ktBenchmark
