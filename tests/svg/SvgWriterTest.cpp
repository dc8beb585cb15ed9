#include "platform/svg/Image.h"
#include "platform/svg/Node.h"
#include "platform/svg/PathBuilder.h"
#include "platform/svg/Rect.h"
#include "platform/svg/SvgWriter.h"
#include "platform/svg/Text.h"
#include "tests/svg/XmlTree.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <limits>

namespace kt::svg {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Point2 = Wm4::Vector2<float>;

constexpr float sNan = std::numeric_limits<float>::quiet_NaN();
constexpr float sInfinity = std::numeric_limits<float>::infinity();

/// A file with one item in it.
struct Written {
    explicit Written(const ItemInterface& item, SvgWriter::TextMode mode = SvgWriter::TextMode::Text) {
        SvgWriter writer(mText, {mode, 0.25F});
        writer.startDocument("");
        writer.writeItem(item);
        writer.endDocument({{0, 0}, {10, 10}});
        mWarnings = writer.getWarnings();
        auto elements = test::parseXml(mText);
        EXPECT_TRUE(elements) << mText;
        mElements = std::move(elements).value_or(std::vector<test::XmlElement>());
    }

    /// The only element of this name.
    test::XmlElement get(std::string_view name) const {
        const auto found = test::findElements(mElements, name);
        EXPECT_EQ(found.size(), 1U) << name << " in " << mText;
        return found.empty() ? test::XmlElement() : found.front();
    }
    std::size_t count(std::string_view name) const { return test::findElements(mElements, name).size(); }

    std::string mText;
    std::vector<std::string> mWarnings;
    std::vector<test::XmlElement> mElements;
};

std::shared_ptr<Text> makeText(const std::string& content) {
    auto text = std::make_shared<Text>();
    text->setText(content);
    text->setFont("Arial");
    text->setSize(3.175F);
    text->setPosition({1, 2});
    text->setLength(7.5F);
    return text;
}

std::shared_ptr<Rect> makeRect() { return std::make_shared<Rect>(Point2(1, 2), Point2(3, 4)); }

TEST(SvgWriter, WritesTheViewBoxInMillimetres) {
    const struct {
        BoundingBox mBox;
        const char* mWidth;
        const char* mViewBox;
    } rows[] = {
        {{{-1, -2}, {3, 7.5F}}, "4mm", "-1 -2 4 9.5"},
        {{}, "1mm", "-0.5 -0.5 1 1"},
        {{{0, 0}, {sInfinity, 1}}, "1mm", "-0.5 -0.5 1 1"},
        {{{2, 2}, {2, 5}}, "1mm", "1.5 2 1 3"},
        {{{-1e9F, -3e38F}, {1e9F, 3e38F}}, "2000000000mm", nullptr},
    };
    for (const auto& row : rows) {
        std::string file;
        SvgWriter writer(file, {});
        writer.startDocument("a < b");
        writer.endDocument(row.mBox);
        const auto elements = test::parseXml(file);
        ASSERT_TRUE(elements) << file;
        EXPECT_EQ(elements->front().getAttribute("width"), row.mWidth);
        if (row.mViewBox != nullptr) {
            EXPECT_EQ(elements->front().getAttribute("viewBox"), row.mViewBox);
        }
        EXPECT_EQ(elements->at(1).mText, "a < b");
    }
}

TEST(SvgWriter, FoldsTranslationsIntoCoordinates) {
    Node root;
    root.setTransform(Transform::makeTranslation({10, 20}));
    auto rect = makeRect();
    rect->setSize({-3, 4});
    rect->translate({0.5F, 0});
    root.appendChild(rect);
    const Written written(root);
    const auto element = written.get("rect");
    EXPECT_EQ(element.getAttribute("x"), "8.5");
    EXPECT_EQ(element.getAttribute("y"), "22");
    EXPECT_EQ(element.getAttribute("width"), "3");
    EXPECT_EQ(element.getAttribute("height"), "4");
    EXPECT_EQ(element.mAttributes.count("transform"), 0U);
    EXPECT_EQ(written.count("g"), 0U);
}

TEST(SvgWriter, WritesUprightTextWithoutTransforms) {
    Node group;
    group.setTransform({{1, 0, 0, -1}, {5, 30}});
    for (const float y : {12.0F, 8.0F}) {
        auto text = makeText("A");
        text->setPosition({1, y});
        text->setTransform({{1, 0, 0, -1}, {0, 2 * y}});
        group.appendChild(text);
    }
    const Written written(group);
    const auto texts = test::findElements(written.mElements, "text");
    ASSERT_EQ(texts.size(), 2U);
    EXPECT_EQ(texts[0].getAttribute("x"), "6");
    EXPECT_EQ(texts[0].getAttribute("y"), "18");
    EXPECT_EQ(texts[1].getAttribute("y"), "22");
    EXPECT_THAT(written.mText, testing::Not(HasSubstr("transform")));
}

TEST(SvgWriter, KeepsMoreDecimalsInsideLargeScales) {
    Node group;
    group.setTransform({{1000, 0, 0, 1000}, {0, 0}});
    group.appendChild(std::make_shared<Rect>(Point2(0.123456F, 0), Point2(1, 1)));
    group.appendChild(makeRect());
    EXPECT_EQ(test::findElements(Written(group).mElements, "rect")[0].getAttribute("x"), "0.123456");
}

TEST(SvgWriter, WritesColoursThatDifferFromTheInheritedOnes) {
    Node root;
    root.setColor("#FF0000");
    root.setOutlineColor("#00FF00");
    root.appendChild(makeText("inherits the fill, has no outline"));
    auto rect = makeRect();
    rect->setColor("none");
    root.appendChild(rect);
    const Written written(root);
    EXPECT_EQ(written.get("g").getAttribute("fill"), "#FF0000");
    EXPECT_EQ(written.get("text").mAttributes.count("fill"), 0U);
    EXPECT_EQ(written.get("text").mAttributes.count("stroke"), 0U);
    EXPECT_EQ(written.get("rect").getAttribute("fill"), "none");
    EXPECT_EQ(written.get("rect").getAttribute("stroke"), "#00FF00");
}

TEST(SvgWriter, GivesTextNoOutlineInsideAnOutlinedGroup) {
    std::string file;
    SvgWriter writer(file, {});
    writer.startDocument("");
    SvgWriter::Group group;
    group.mOutlineColor = "#0000FF";
    writer.startGroup(group);
    writer.writeItem(*makeText("A"));
    writer.endGroup();
    writer.endDocument({});
    EXPECT_EQ(test::findElements(test::parseXml(file).value(), "text").at(0).getAttribute("stroke"), "none");
}

TEST(SvgWriter, WritesOnlyColoursAsColours) {
    for (const char* color :
         {"url(#x)", "url(http://example.com)", "#12345", "#GGGGGG", "red\" onload=\"x", "", "rgb(1,2,3)"}) {
        auto rect = makeRect();
        rect->setColor(color);
        const Written written(*rect);
        EXPECT_EQ(written.get("rect").mAttributes.count("fill"), 0U) << color;
        EXPECT_EQ(written.mWarnings.size(), 1U) << color;
    }
}

TEST(SvgWriter, WritesNamesOnceAndKeepsGlyphIds) {
    Node root;
    for (const char* id : {"a<b", "a<b", "g7"}) {
        auto rect = makeRect();
        rect->setId(id);
        rect->setClass("border \"x\"");
        rect->setStyleOption(ItemInterface::sStyleNonScalingStroke);
        root.appendChild(rect);
    }
    const auto rects = test::findElements(Written(root, SvgWriter::TextMode::Outlines).mElements, "rect");
    ASSERT_EQ(rects.size(), 3U);
    EXPECT_EQ(rects[0].getAttribute("id"), "a<b");
    EXPECT_EQ(rects[1].mAttributes.count("id"), 0U);
    EXPECT_EQ(rects[2].mAttributes.count("id"), 0U);
    EXPECT_EQ(rects[0].getAttribute("class"), "border \"x\"");
    EXPECT_EQ(rects[0].getAttribute("vector-effect"), "non-scaling-stroke");
    EXPECT_EQ(test::findElements(Written(root).mElements, "rect")[2].getAttribute("id"), "g7");
}

TEST(SvgWriter, LeavesOutWhatDrawsNothing) {
    Node root;
    root.setId("gone");
    auto named = std::make_shared<Node>();
    named->setId("empty");
    named->appendChild(std::make_shared<Node>());
    root.appendChild(named);
    auto hidden = makeRect();
    hidden->setVisible(false);
    hidden->setId("dummyTxtBB");
    root.appendChild(hidden);
    root.appendChild(std::make_shared<Path>());
    root.appendChild(makeText(""));
    const Written written(root);
    EXPECT_EQ(written.mElements.size(), 2U) << written.mText;  // the root and its style
    EXPECT_THAT(written.mWarnings, IsEmpty());
}

TEST(SvgWriter, LeavesOutItemsWithNumbersThatAreNotFinite) {
    auto path = std::make_shared<Path>();
    path->moveTo({0, 0});
    path->lineTo({sInfinity, 0});
    auto text = makeText("A");
    text->setLength(sNan);
    auto image = std::make_shared<Image>();
    image->setSource("GIF89a");
    image->setSize({1, sNan});
    auto group = std::make_shared<Node>();
    group->setTransform(Transform::makeTranslation({sInfinity, 0}));
    group->appendChild(makeRect());
    Node root;
    root.appendChild(path);
    root.appendChild(text);
    root.appendChild(image);
    root.appendChild(group);
    root.appendChild(std::make_shared<Rect>(Point2(sNan, 0), Point2(1, 1)));
    auto good = makeRect();
    good->setId("good");
    root.appendChild(good);
    const Written written(root);
    EXPECT_EQ(written.get("rect").getAttribute("id"), "good");
    EXPECT_EQ(written.mElements.size(), 3U) << written.mText;
    EXPECT_THAT(
        written.mWarnings,
        ElementsAre("a path was left out: a number is not finite", "a text was left out: a number is not finite",
                    "an image was left out: a number is not finite", "a group was left out: a number is not finite",
                    "a rectangle was left out: a number is not finite"));
}

TEST(SvgWriter, EmbedsPicturesAndNothingElse) {
    Image image;
    image.setSize({2, -1});
    image.setSource("GIF89a");
    const auto element = Written(image).get("image");
    EXPECT_EQ(element.getAttribute("href"), "data:image/gif;base64,R0lGODlh");
    EXPECT_EQ(element.getAttribute("y"), "-1");
    EXPECT_EQ(element.getAttribute("height"), "1");
    EXPECT_EQ(element.getAttribute("preserveAspectRatio"), "none");
    image.setSource("http://example.com/logo.png");
    const Written refused(image);
    EXPECT_EQ(refused.count("image"), 0U);
    EXPECT_THAT(refused.mWarnings, ElementsAre(HasSubstr("an image was left out")));
}

TEST(SvgWriter, LeavesOutElementsThatAreTooLong) {
    const auto text = makeText(std::string(SvgWriter::sMaxElementSize, 'x'));
    EXPECT_EQ(Written(*text).count("text"), 0U);
    text->setText(std::string(SvgWriter::sMaxElementSize - 1000, 'x'));
    EXPECT_EQ(Written(*text).count("text"), 1U);
}

TEST(SvgWriter, WritesTextAttributes) {
    auto text = makeText(" two  blanks & <more> ");
    text->setFont("O'Brien \\ \"Sans\"\n");
    text->setBold(true);
    text->setItalic(true);
    text->setRightToLeft(true);
    const auto element = Written(*text).get("text");
    EXPECT_EQ(element.mText, " two  blanks & <more> ");
    EXPECT_EQ(element.getAttribute("xml:space"), "preserve");
    EXPECT_EQ(element.getAttribute("font-family"), "'O\\'Brien \\\\ \"Sans\" ',sans-serif");
    EXPECT_EQ(element.getAttribute("font-size"), "3.175");
    EXPECT_EQ(element.getAttribute("font-weight"), "bold");
    EXPECT_EQ(element.getAttribute("font-style"), "italic");
    EXPECT_EQ(element.getAttribute("textLength"), "7.5");
    EXPECT_EQ(element.getAttribute("lengthAdjust"), "spacingAndGlyphs");
    EXPECT_EQ(element.getAttribute("direction"), "rtl");
    EXPECT_EQ(element.getAttribute("text-anchor"), "end");
    EXPECT_EQ(Written(*makeText("one blank each")).get("text").mAttributes.count("xml:space"), 0U);
}

TEST(SvgWriter, SaysTheFontOfSeveralTextsOnce) {
    Node group;
    for (const bool isBold : {true, true, false}) {
        auto text = makeText("A");
        text->setBold(isBold);
        group.appendChild(text);
    }
    const Written written(group);
    EXPECT_EQ(written.get("g").getAttribute("font-family"), "'Arial',sans-serif");
    EXPECT_EQ(written.get("g").getAttribute("font-weight"), "bold");
    const auto texts = test::findElements(written.mElements, "text");
    ASSERT_EQ(texts.size(), 3U);
    EXPECT_EQ(texts[0].mAttributes.count("font-size"), 0U);
    EXPECT_EQ(texts[1].mAttributes.count("font-size"), 0U);
    EXPECT_EQ(texts[2].getAttribute("font-size"), "3.175");
    EXPECT_EQ(texts[2].getAttribute("font-weight"), "normal");
}

TEST(SvgWriter, FlattensWhatIsNestedTooDeeply) {
    auto leaf = makeRect();
    auto root = std::make_shared<Node>();
    root->appendChild(leaf);
    root->setColor("#123456");
    for (int depth = 0; depth < 100; ++depth) {
        auto parent = std::make_shared<Node>();
        parent->setId("level" + std::to_string(depth));
        parent->appendChild(root);
        // Turned a quarter each time: a hundred of them are as good as none.
        parent->setTransform({{0, -1, 1, 0}, {0, 0}});
        parent->appendChild(makeText("x"));
        root = parent;
    }
    const Written written(*root);
    const auto deepest = std::max_element(written.mElements.begin(), written.mElements.end(),
                                          [](const auto& a, const auto& b) { return a.mDepth < b.mDepth; });
    EXPECT_LE(deepest->mDepth, SvgWriter::sMaxDepth);
    EXPECT_EQ(written.count("text"), 100U);
    const auto rect = written.get("rect");
    EXPECT_EQ(rect.getAttribute("fill"), "#123456");
    // All quarter turns above the rectangle, its own transform included, must add up to whole turns.
    int quarterTurns = 0;
    for (std::size_t index = rect.mParent; index != 0; index = written.mElements[index].mParent) {
        ASSERT_EQ(written.mElements[index].getAttribute("transform"), "matrix(0 1 -1 0 0 0)");
        ++quarterTurns;
    }
    const struct {
        const char* mTransform;
        int mQuarterTurns;
    } rows[] = {{"", 0}, {"matrix(0 1 -1 0 0 0)", 1}, {"matrix(-1 0 0 -1 0 0)", 2}, {"matrix(0 -1 1 0 0 0)", 3}};
    const auto* row = std::find_if(std::begin(rows), std::end(rows), [&](const auto& entry) {
        return entry.mTransform == rect.getAttribute("transform");
    });
    ASSERT_NE(row, std::end(rows)) << rect.getAttribute("transform");
    EXPECT_EQ((quarterTurns + row->mQuarterTurns) % 4, 0);
}

/// Draws every character but blanks as the same triangle of one unit.
class TriangleSource final : public GlyphSource {
public:
    TriangleSource() {
        mOutline.moveTo({0, 0});
        mOutline.lineTo({1, 0});
        mOutline.lineTo({0.33333F, -1});
        mOutline.close();
    }
    void appendGlyphs(const Text& text, std::vector<PlacedGlyph>& glyphs) const override {
        float x = 0.0F;
        for (const char character : text.getText()) {
            if (character != ' ') {
                glyphs.push_back({&mOutline, {x, 0}, text.getSize()});
            }
            x += text.getSize();
        }
    }

private:
    Path mOutline;
};

TEST(SvgWriter, DefinesEachGlyphOnce) {
    const auto source = std::make_shared<TriangleSource>();
    Node root;
    for (int count = 0; count < 2; ++count) {
        auto text = makeText("A BC");
        text->setSize(2.0F);
        text->setGlyphSource(source);
        root.appendChild(text);
    }
    root.appendChild(makeText("without outlines"));
    const Written written(root, SvgWriter::TextMode::Outlines);
    EXPECT_EQ(written.get("defs").mDepth, 2);
    const auto outline = written.get("path");
    EXPECT_EQ(outline.getAttribute("id"), "g1");
    EXPECT_EQ(outline.getAttribute("d"), "M0 0L1 0L0.33333 -1Z");
    const auto uses = test::findElements(written.mElements, "use");
    ASSERT_EQ(uses.size(), 6U);
    EXPECT_EQ(uses[1].getAttribute("href"), "#g1");
    EXPECT_EQ(uses[1].getAttribute("x"), "2");
    EXPECT_EQ(written.mElements[uses[1].mParent].getAttribute("transform"), "matrix(2 0 0 2 1 2)");
    EXPECT_EQ(written.get("text").mText, "without outlines");
    EXPECT_EQ(written.mWarnings.size(), 1U);
}

TEST(SvgWriter, WritesPathsInAbsoluteCommands) {
    Path path;
    path.lineTo({1, 1});
    path.cubicTo({1, 2}, {3, 4}, {5, -6});
    path.arcTo({20, -10}, 30, true, false, {9, 9});
    path.close();
    EXPECT_EQ(Written(path).get("path").getAttribute("d"), "M0 0L1 1C1 2 3 4 5 -6A20 10 30 1 0 9 9Z");
}

TEST(SvgWriter, LetsRadiiOfHalfTurnsGrow) {
    PathBuilder builder;
    builder.appendEllipse({0.0004F, 0}, {2, 1}, 0, 2 * Wm4::Mathf::PI);
    EXPECT_EQ(Written(*builder.createPathItem(true)).get("path").getAttribute("d"),
              "M2 0A1.98 0.99 0 0 1 -2 0A1.98 0.99 0 0 1 2 0Z");
}

}  // namespace
}  // namespace kt::svg
