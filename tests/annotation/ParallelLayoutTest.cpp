#include "tests/annotation/LaidOutText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <thread>

namespace kt {
namespace {

using test::LaidOutText;
using test::makeProperties;
using test::makeSegment;
using text::TextSegment;

/// Texts of all paths through the layout: tables, shaping, fallback, both directions, several styles.
std::vector<text::TextArea> makeAreas() {
    std::vector<text::TextArea> areas;
    for (int number = 0; number < 200; ++number) {
        const auto properties =
            makeProperties(number % 2 == 0 ? "Arial" : "DejaVu Serif", 3.0F + 0.25F * static_cast<float>(number % 9),
                           static_cast<std::uint8_t>(number % 4));
        const std::string digits = std::to_string(number * 37);
        areas.push_back(test::makeArea(
            properties, {{makeSegment("⌀" + digits), makeSegment("+0." + digits, TextSegment::Superscript)},
                         {makeSegment("office " + digits + " קוטר")},
                         {makeSegment("直径" + digits), makeSegment("ق" + digits)}}));
    }
    return areas;
}

std::string describe(const std::vector<text::TextArea>& areas) {
    const text::TextSegmentToSvgConverter converter;
    std::ostringstream description;
    description << std::hexfloat;
    for (const text::TextArea& area : areas) {
        const LaidOutText block(converter, area);
        description << block.mSize.x << ' ' << block.mSize.y << '\n';
        for (const auto& text : block.mTexts) {
            description << text->getText() << ' ' << text->getPosition().x << ' ' << text->getPosition().y << ' '
                        << text->getLength() << ' ' << text->getExtent().getWidth() << '\n';
            std::vector<svg::PlacedGlyph> glyphs;
            text->getGlyphSource()->appendGlyphs(*text, glyphs);
            for (const svg::PlacedGlyph& glyph : glyphs) {
                description << glyph.mPosition.x << ' ' << glyph.mOutline->getPoints().size() << '\n';
            }
        }
    }
    return description.str();
}

TEST(ParallelLayoutTest, GivesTheSameFromEveryThread) {
    const std::vector<text::TextArea> areas = makeAreas();
    std::vector<std::string> descriptions(4);
    std::vector<std::thread> threads;
    for (std::string& description : descriptions) {
        threads.emplace_back([&description, &areas] { description = describe(areas); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const std::string expected = describe(areas);
    EXPECT_GT(expected.size(), 10'000U);
    for (const std::string& description : descriptions) {
        EXPECT_TRUE(description == expected);
    }
}

}  // namespace
}  // namespace kt
