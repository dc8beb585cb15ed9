#include "benchmarks/loading/SampleDocuments.h"

#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <random>
#include <utility>

namespace ktBenchmark {

namespace {

using namespace std::string_view_literals;

constexpr std::array sTexts{"⌀35"sv,           "+0.05"sv,
                            "-0.1"sv,          "4X ⌀.625"sv,
                            "±.005"sv,         "↧.30±.02"sv,
                            "60°"sv,           "⟂ | 1.5 | A"sv,
                            "M8 x 1.25"sv,     "6H "sv,
                            "R.022-.012"sv,    "(.750)"sv,
                            "INDICATED"sv,     "A"sv,
                            "2 SURFACES"sv,    "4 COPLANAR"sv,
                            "F1.1 AND F1.2"sv, "⌖ | ⌀0.75 | A"sv,
                            " SIM REQT"sv,     "ACROSS FLATS"sv,
                            "0.2"sv,           "BREAK SHARP EDGES 0.2-0.5"sv,
                            "10.000"sv};
constexpr std::array sNames{"Linear Size"sv, "Flatness"sv, "Perpendicularity"sv, "Position surface"sv, "Note"sv};
constexpr std::array<std::uint32_t, 5> sColors{0xFFFFFF, 0xFFFFCC, 0xCCFFCC, 0xFFD9B3, 0xE6F0FF};
constexpr std::array sFrameWords{"noframe"sv, "rectangle"sv, "square"sv, "diamond"sv, "triangle"sv};
constexpr std::array sHeadWords{""sv, "square"sv, "circle"sv, "arrow"sv, "plus"sv, "cross"sv, "triangle"sv};
constexpr std::array sTypeWords{""sv, "sub"sv, "sup"sv};
constexpr int sBottomLeft = 1;
constexpr std::string_view sBottomLeftWord = "bl";

/// Draws numbers; the standard distributions differ between libraries.
class Draw {
public:
    explicit Draw(int seed) : mEngine(static_cast<std::uint32_t>(seed)) {}

    /// 0 to count - 1.
    int index(std::size_t count) { return static_cast<int>(mEngine() % count); }
    template <typename Values>
    auto pick(const Values& values) {
        return values[mEngine() % values.size()];
    }
    /// A coordinate in whole thousandths within reach of the centre.
    float coordinate(float center, int reach) {
        const int thousandths = index(static_cast<std::size_t>(reach) * 2000) - reach * 1000;
        return std::round((center + static_cast<float>(thousandths) / 1000.0F) * 1000.0F) / 1000.0F;
    }

private:
    std::mt19937 mEngine;
};

SampleAnnotation makeAnnotation(Draw& draw, int number, std::array<float, 3> position) {
    SampleAnnotation annotation;
    annotation.mName = std::string(draw.pick(sNames)) + '.' + std::to_string(number);
    annotation.mPosition = position;
    annotation.mColor = draw.pick(sColors);
    annotation.mFrameShape = draw.index(sFrameWords.size());
    annotation.mHeight = 250 + 50 * draw.index(8);
    for (int leader = 0; leader <= number % 2; ++leader) {
        annotation.mLeaders.push_back({{draw.coordinate(position[0], 60), draw.coordinate(position[1], 40), 0.0F},
                                       draw.index(sHeadWords.size())});
    }
    for (auto& line : annotation.mLines) {
        for (SampleSegment& segment : line) {
            segment = {draw.pick(sTexts), 0};
        }
        line[1].mType = draw.index(sTypeWords.size());
    }
    return annotation;
}

// Binary

template <typename Number>
void put(std::string& bytes, Number number) {
    char buffer[sizeof(Number)];
    std::memcpy(buffer, &number, sizeof(Number));
    bytes.append(buffer, sizeof(Number));
}

void putVector(std::string& bytes, const std::array<float, 3>& vector) {
    for (const float coordinate : vector) {
        put(bytes, coordinate);
    }
}

void putText(std::string& bytes, std::string_view text) {
    put(bytes, static_cast<std::int32_t>(text.size()));
    bytes += text;
}

void putCount(std::string& bytes, std::size_t count) { put(bytes, static_cast<std::uint32_t>(count)); }

void putByte(std::string& bytes, int value) { bytes += static_cast<char>(value); }

void putLines(std::string& bytes, const SampleAnnotation& annotation) {
    putCount(bytes, annotation.mLines.size());
    for (const auto& line : annotation.mLines) {
        putCount(bytes, line.size());
        for (const SampleSegment& segment : line) {
            put(bytes, static_cast<std::uint16_t>(segment.mText.size()));
            bytes += segment.mText;
            putByte(bytes, segment.mType);
            putByte(bytes, 0);  // no properties of its own
        }
    }
}

void putAnnotation(std::string& bytes, const SampleAnnotation& annotation) {
    putText(bytes, annotation.mName);
    putCount(bytes, annotation.mLeaders.size());
    for (const SampleLeader& leader : annotation.mLeaders) {
        putVector(bytes, leader.mPosition);
        putByte(bytes, leader.mHead);
    }
    putCount(bytes, 0);  // measure leaders
    putVector(bytes, annotation.mPosition);
    putByte(bytes, static_cast<int>(annotation.mColor >> 16 & 0xFF));
    putByte(bytes, static_cast<int>(annotation.mColor >> 8 & 0xFF));
    putByte(bytes, static_cast<int>(annotation.mColor & 0xFF));
    putByte(bytes, annotation.mFrameShape);
    putCount(bytes, annotation.mChildren.size());
    for (const SampleAnnotation& child : annotation.mChildren) {
        putByte(bytes, sBottomLeft);
        putByte(bytes, 1);  // a text
        putAnnotation(bytes, child);
    }
    putCount(bytes, 0);  // metadata
    putText(bytes, "Arial");
    put(bytes, static_cast<std::uint16_t>(annotation.mHeight));
    putByte(bytes, 0);
    putByte(bytes, 0);
    putLines(bytes, annotation);
}

// JSON

void putNumber(std::string& text, double number) {
    char buffer[32];
    const auto result = std::to_chars(buffer, buffer + sizeof(buffer), number);
    text.append(buffer, result.ptr);
}

/// A vector in whole thousandths, as documents hold it.
void putVectorList(std::string& text, const std::array<float, 3>& vector) {
    char separator = '[';
    for (const float coordinate : vector) {
        text += std::exchange(separator, ',');
        const double number = std::round(static_cast<double>(coordinate) * 1000.0) / 1000.0;
        putNumber(text, number);
        if (number == std::floor(number)) {
            text += ".0";
        }
    }
    text += ']';
}

void putString(std::string& text, std::string_view string) { text.append(1, '"').append(string).append(1, '"'); }

std::string makeHexColor(std::uint32_t color) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (unsigned int shift = 24; shift != 0; shift -= 4) {
        text += digits[color >> (shift - 4) & 0xFU];
    }
    return text;
}

void putJsonLines(std::string& text, const SampleAnnotation& annotation) {
    char lineSeparator = '[';
    for (const auto& line : annotation.mLines) {
        text += std::exchange(lineSeparator, ',');
        char separator = '[';
        for (const SampleSegment& segment : line) {
            text += std::exchange(separator, ',');
            text += "{\"text\":";
            putString(text, segment.mText);
            if (segment.mType != 0) {
                text += ",\"type\":";
                putString(text, sTypeWords[static_cast<std::size_t>(segment.mType)]);
            }
            text += '}';
        }
        text += ']';
    }
    text += ']';
}

void putJsonLeaders(std::string& text, const SampleAnnotation& annotation) {
    char separator = '[';
    for (const SampleLeader& leader : annotation.mLeaders) {
        text += std::exchange(separator, ',');
        text += "{\"pos\":";
        putVectorList(text, leader.mPosition);
        if (leader.mHead != 0) {
            text += ",\"head\":";
            putString(text, sHeadWords[static_cast<std::size_t>(leader.mHead)]);
        }
        text += '}';
    }
    text += ']';
}

void putJsonAnnotation(std::string& text, const SampleAnnotation& annotation, std::string_view anchor) {
    text += "{\"type\":\"text\",\"name\":";
    putString(text, annotation.mName);
    text += ",\"color\":";
    putString(text, makeHexColor(annotation.mColor));
    text += ",\"frameshape\":";
    putString(text, sFrameWords[static_cast<std::size_t>(annotation.mFrameShape)]);
    text += ",\"defaulttextprop\":{\"font\":\"Arial\",\"heightem\":";
    putNumber(text, annotation.mHeight / 100.0);
    text += ",\"bold\":false,\"italic\":false},\"lines\":";
    putJsonLines(text, annotation);
    text += ",\"position\":";
    putVectorList(text, annotation.mPosition);
    text += ",\"leaders\":";
    putJsonLeaders(text, annotation);
    if (!anchor.empty()) {
        text += ",\"anchorloc\":";
        putString(text, anchor);
    }
    char separator = '[';
    for (const SampleAnnotation& child : annotation.mChildren) {
        text += separator == '[' ? ",\"children\":[" : ",";
        separator = ',';
        putJsonAnnotation(text, child, sBottomLeftWord);
    }
    text += annotation.mChildren.empty() ? "}" : "]}";
}

}  // namespace

SampleView makeSampleView(int number, int count) {
    constexpr int columns = 300;
    Draw draw(number);
    SampleView view;
    view.reserve(static_cast<std::size_t>(count));
    for (int index = 0; index < count; ++index) {
        const std::array<float, 3> position{draw.coordinate(150.0F * static_cast<float>(index % columns), 20),
                                            draw.coordinate(-60.0F * static_cast<float>(index / columns), 10), 0.0F};
        SampleAnnotation& annotation = view.emplace_back(makeAnnotation(draw, index, position));
        if (index % 4 == 0) {
            annotation.mChildren.push_back(makeAnnotation(draw, index, {0.0F, 0.0F, 0.0F}));
        }
    }
    return view;
}

void appendBinary(const SampleView& view, std::string& bytes) {
    putText(bytes, "front view");
    putVector(bytes, {100.0F, 200.0F, 0.0F});
    putVector(bytes, {0.0F, 0.0F, 1.0F});
    putVector(bytes, {1.0F, 0.0F, 0.0F});
    putCount(bytes, view.size());
    putCount(bytes, 0);  // raster annotations
    for (const SampleAnnotation& annotation : view) {
        putAnnotation(bytes, annotation);
    }
    putCount(bytes, 0);  // metadata
}

void appendJson(const SampleView& view, std::string& text) {
    text += R"({"ver":"6.27","name":"front view","origin":[100.0,200.0,0.0],"normal":[0.0,0.0,1.0],)";
    text += R"("axis":[1.0,0.0,0.0],"metadata":{},"annotations":[)";
    for (const SampleAnnotation& annotation : view) {
        if (&annotation != &view.front()) {
            text += ',';
        }
        putJsonAnnotation(text, annotation, {});
    }
    text += "]}";
}

}  // namespace ktBenchmark
