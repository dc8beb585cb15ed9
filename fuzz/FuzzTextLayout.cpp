/// @file
/// Text of any bytes, sizes and styles, laid out and written in both modes. Contract: an extent that is finite, and
/// well-formed drawings; laid out a second time, by a converter that knows the fonts, the block is the same.

#include "fuzz/Bytes.h"
#include "fuzz/ReadBack.h"
#include "platform/annotation/TextSegmentToSvgConverter.h"
#include "platform/annotation/ktAnnotationLibrary.h"
#include "platform/svg/SvgWriter.h"

#include <array>
#include <cmath>
#include <cstdlib>

namespace {

using kt::text::TextArea;
using kt::text::TextProperties;
using kt::text::TextSegment;

constexpr std::array<const char*, 6> sFamilies{"Arial", "Noto Sans", "Liberation Serif", "DejaVu Sans", "", "No Such"};

TextProperties takeProperties(ktFuzz::Bytes& bytes) {
    TextProperties properties;
    properties.mFontName = sFamilies[bytes.take<std::uint8_t>() % sFamilies.size()];
    properties.mStyle = bytes.take<std::uint8_t>();
    const auto size = bytes.take<std::int16_t>();
    properties.mFontSize = size == INT16_MAX ? std::nanf("") : static_cast<float>(size) / 100.0F;
    return properties;
}

TextArea takeArea(ktFuzz::Bytes& bytes) {
    TextArea area{takeProperties(bytes), {{}}};
    while (!bytes.isEmpty()) {
        const auto flags = bytes.take<std::uint8_t>();
        if ((flags & 4U) != 0) {
            area.mLines.emplace_back();
        }
        TextSegment segment;
        segment.setType(static_cast<TextSegment::SegmentType>(flags % 3U));
        if ((flags & 8U) != 0) {
            segment.setProperties(takeProperties(bytes));
        }
        const std::string text = bytes.takeText();
        segment.setText(text.data(), text.size());
        area.mLines.back().push_back(std::move(segment));
    }
    return area;
}

std::string writeDrawing(const kt::svg::Node& group, kt::svg::SvgWriter::TextMode mode) {
    kt::svg::SvgWriter::Options options;
    options.mTextMode = mode;
    kt::svg::SvgWriter writer(options);
    writer.startDocument("text");
    writer.writeItem(group);
    std::string drawing;
    for (const std::string_view piece : writer.endDocument(kt::svg::BoundingBox{})) {
        drawing += piece;
    }
    return drawing;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    kt::initializeKtAnnotationLibrary(false);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const kt::text::TextSegmentToSvgConverter sConverter;
    ktFuzz::Bytes bytes(data, size);
    const TextArea area = takeArea(bytes);
    std::array<std::string, 2> before;
    for (int round = 0; round < 2; ++round) {
        kt::svg::Node group;
        Wm4::Vector2<float> extent{};
        if (sConverter.convertTextAreaToSvg(area, group, &extent, "block") &&
            !(std::isfinite(extent.x) && std::isfinite(extent.y))) {
            std::abort();
        }
        const std::array drawings{writeDrawing(group, kt::svg::SvgWriter::TextMode::Text),
                                  writeDrawing(group, kt::svg::SvgWriter::TextMode::Outlines)};
        for (const std::string& drawing : drawings) {
            if (const auto facts = ktFuzz::readBack(drawing); !facts.mIsWellFormed || !facts.mIsSelfContained) {
                std::abort();
            }
        }
        if (round == 1 && drawings != before) {
            std::abort();
        }
        before = drawings;
    }
    return 0;
}
