#include "platform/annotation/ktAnnotationLibrary.h"
#include "tests/annotation/LaidOutText.h"

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
        const float size = 3.0F + 0.25F * static_cast<float>(number % 9);
        const std::string digits = std::to_string(number * 37);
        areas.push_back(
            {makeProperties(number % 2 == 0 ? "Arial" : "DejaVu Serif", size, static_cast<std::uint8_t>(number % 4)),
             {{makeSegment("⌀" + digits), makeSegment("+0." + digits, TextSegment::Superscript)},
              {makeSegment("office " + digits + " קוטר")},
              {makeSegment("直径" + digits), makeSegment("ق" + digits)}}});
    }
    return areas;
}

std::string describe(const std::vector<text::TextArea>& areas) {
    const text::TextSegmentToSvgConverter converter;
    std::ostringstream description;
    description << std::hexfloat;
    for (const text::TextArea& area : areas) {
        const LaidOutText block(area, converter);
        description << block.mSize.x << ' ' << block.mSize.y << '\n';
        for (const auto& text : block.mTexts) {
            description << text->getText() << ' ' << text->getPosition().x << ' ' << text->getPosition().y << ' '
                        << text->getLength() << ' ' << text->getExtent().getWidth() << '\n';
        }
        for (const svg::PlacedGlyph& glyph : block.mGlyphs) {
            description << glyph.mPosition.x << ' ' << glyph.mOutline->getPoints().size() << '\n';
        }
    }
    return description.str();
}

TEST(ParallelLayoutTest, GivesTheSameFromEveryThread) {
    const std::vector<text::TextArea> areas = makeAreas();
    std::vector<std::string> descriptions(4);
    std::vector<std::jthread> threads;
    for (std::string& description : descriptions) {
        threads.emplace_back([&description, &areas] { description = describe(areas); });
    }
    threads.clear();
    const std::string expected = describe(areas);
    EXPECT_GT(expected.size(), 10'000U);
    for (const std::string& description : descriptions) {
        EXPECT_TRUE(description == expected);
    }
}

TEST(AnnotationLibraryTest, KeepsFontsThatConvertersHoldBeyondItsEnd) {
    initializeKtAnnotationLibrary(true);
    const text::TextSegmentToSvgConverter converter;
    const text::TextArea area = test::makeLine({}, {"before and after"});
    const LaidOutText before(area, converter);
    terminateKtAnnotationLibrary();
    const LaidOutText after(area, converter);
    EXPECT_GT(before.mSize.x, 0.0F);
    EXPECT_EQ(after.mSize, before.mSize);

    std::vector<svg::PlacedGlyph> glyphs;
    before.mTexts.at(0)->getGlyphSource()->appendGlyphs(*before.mTexts.at(0), glyphs);
    EXPECT_EQ(glyphs.size(), 14U);
}

}  // namespace
}  // namespace kt
