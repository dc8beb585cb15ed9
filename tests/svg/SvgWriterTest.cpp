#include "platform/svg/PathBuilder.h"
#include "platform/svg/SvgWriter.h"
#include "platform/svg/Text.h"
#include "tests/svg/MakeItems.h"
#include "tests/svg/XmlTree.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <limits>
#include <random>

namespace kt::svg {
namespace {

using test::makeGroup;
using test::makeImage;
using test::makeRect;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using Kind = SvgWriter::Warning::Kind;

constexpr float sNan = std::numeric_limits<float>::quiet_NaN();
constexpr float sInfinity = std::numeric_limits<float>::infinity();

/// Completes the file and reads it.
std::vector<test::XmlElement> endDocument(SvgWriter& writer, const BoundingBox& viewBox = {{0, 0}, {10, 10}}) {
    std::string file;
    for (const std::string_view piece : writer.endDocument(viewBox)) {
        file += piece;
    }
    auto elements = test::parseXml(file);
    EXPECT_TRUE(elements) << testing::PrintToString(file);
    return std::move(elements).value_or(std::vector<test::XmlElement>(2));
}

/// A file with one item in it.
struct Written {
    explicit Written(const ItemInterface& item, SvgWriter::TextMode mode = SvgWriter::TextMode::Text)
        : Written(item, SvgWriter::Options{mode}) {}
    Written(const ItemInterface& item, const SvgWriter::Options& options) {
        SvgWriter writer(options);
        writer.startDocument("");
        writer.writeItem(item);
        mElements = endDocument(writer);
        for (const SvgWriter::Warning& warning : writer.takeWarnings()) {
            mWarnings.push_back(warning.mWhat);
            mKinds.push_back(warning.mKind);
        }
    }

    std::size_t count(std::string_view name) const { return test::findElements(mElements, name).size(); }
    std::string describe() const { return test::describeElements(mElements); }

    std::vector<std::string> mWarnings;
    std::vector<Kind> mKinds;
    std::vector<test::XmlElement> mElements;
};

/// What the file says about texts of makeText.
const std::string sFont = " class=A";
const std::string sLength = " textLength=7.5";

std::shared_ptr<Text> makeText(const std::string& content) {
    auto text = std::make_shared<Text>();
    text->setText(content);
    text->setFont("Arial");
    text->setSize(3.175F);
    text->setPosition({1, 2});
    text->setLength(7.5F);
    return text;
}

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
        SvgWriter writer({});
        writer.startDocument("a < b");
        const auto elements = endDocument(writer, row.mBox);
        EXPECT_EQ(elements.front().getAttribute("width"), row.mWidth);
        if (row.mViewBox != nullptr) {
            EXPECT_EQ(elements.front().getAttribute("viewBox"), row.mViewBox);
        }
        EXPECT_EQ(elements.at(1).mText, "a < b");
    }
}

TEST(SvgWriter, WritesWhatDiffersFromTheGroupsAround) {
    const Transform mirror{{1, 0, 0, -1}, {5, 30}};
    const auto makeUpright = [](float y) {
        auto text = makeText("A");
        text->setPosition({1, y});
        text->setTransform({{1, 0, 0, -1}, {0, 2 * y}});
        return text;
    };
    const auto makeWeighted = [](bool isBold) {
        auto text = makeText("A");
        text->setBold(isBold);
        return text;
    };
    auto moved = makeRect({1, 2}, {-3, 4});
    moved->translate({0.5F, 0});
    auto colored = makeGroup({}, {makeText("A"), makeRect({1, 2}, {3, 4}, "none", "#00FF00")});
    colored->setColor("#FF0000");
    colored->setOutlineColor("#00FF00");
    auto rich = makeText(" two  blanks & <more> ");
    rich->setFont("O'Brien \\ \"Sans\"\n");
    rich->setBold(true);
    rich->setItalic(true);
    rich->setRightToLeft(true);
    rich->setClass("border");
    auto scaled = makeRect({1, 2}, {3, 4}, "none", "#00FF00");
    scaled->setClass("border");
    const std::string light = ".text" + sLength + " x=1 y=2 | A\n";
    const std::pair<std::shared_ptr<ItemInterface>, std::string> rows[] = {
        {makeGroup(Transform::makeTranslation({10, 20}), {moved}), "rect height=4 width=3 x=8.5 y=22\n"},
        {makeGroup(mirror, {makeUpright(12), makeUpright(8)}),
         "g" + sFont + "\n.text" + sLength + " x=6 y=18 | A\n.text" + sLength + " x=6 y=22 | A\n"},
        // Numbers inside large scales keep more decimals.
        {makeGroup({{1000, 0, 0, 1000}, {0, 0}}, {makeRect({0.123456F, 0}, {1, 1}), makeRect({1, 2}, {3, 4})}),
         "g transform=matrix(1000 0 0 1000 0 0)\n.rect height=1 width=1 x=0.123456 y=0\n.rect height=4 width=3 x=1 "
         "y=2\n"},
        {colored, "g fill=#FF0000\n.text" + sFont + sLength + " x=1 y=2 | A\n" +
                      ".rect class=s fill=none height=4 stroke=#00FF00 width=3 x=1 y=2\n"},
        {makeGroup({}, {makeWeighted(true), makeWeighted(true), makeWeighted(false)}),
         "g class=A\n" + light + light + ".text class=B" + sLength + " x=1 y=2 | A\n"},
        {rich,
         "text class=A border textLength=7.5 x=1 xml:space=preserve y=2 | "
         "\xE2\x80\xAE two  blanks & <more> \xE2\x80\x8F\xE2\x80\xAC\n"},
        // Letters that ran from right to left, were it not for what stands around them in their line.
        {makeText("\xD7\xA9"),
         "text class=A lengthAdjust=spacingAndGlyphs" + sLength + " x=1 y=2 | \xE2\x80\xAD\xD7\xA9\xE2\x80\xAC\n"},
        {scaled, "rect class=s border fill=none height=4 stroke=#00FF00 width=3 x=1 y=2\n"},
        {makeText("one blank each"), "text" + sFont + sLength + " x=1 y=2 | one blank each\n"},
    };
    for (const auto& [item, expected] : rows) {
        EXPECT_EQ(Written(*item).describe(), expected);
    }
}

/// A text as a strict parser reads it back, from the title's content and from an attribute.
std::pair<std::string, std::string> readBack(const std::string& text) {
    SvgWriter writer({});
    writer.startDocument(text);
    const auto rect = makeRect({1, 2}, {3, 4});
    rect->setClass(text);
    writer.writeItem(*rect);
    const auto elements = endDocument(writer);
    return {elements.at(1).mText, elements.back().getAttribute("class")};
}

TEST(SvgWriter, WritesTextsThatAreReadBack) {
    using namespace std::string_literals;
    const std::string replacement = "\xEF\xBF\xBD";
    const struct {
        std::string mText;
        std::string mRead;
    } rows[] = {
        {"plain text of some length", "plain text of some length"},
        {"<&>\"' ]]> <!-- -->", "<&>\"' ]]> <!-- -->"},
        {"tab\tline\nreturn\r\n.", "tab\tline\nreturn\r\n."},
        {"a\0b\x01\x08\x0B\x0C\x0E\x1F"s,
         "a" + replacement + "b" + replacement + replacement + replacement + replacement + replacement + replacement},
        {"\x7F\xC2\x80 \xC3\xA9 \xE2\x8C\x80 \xF0\x9F\x98\x80", "\x7F\xC2\x80 \xC3\xA9 \xE2\x8C\x80 \xF0\x9F\x98\x80"},
        {"\xEF\xBF\xBE|\xEF\xBF\xBF|\xEF\xBF\xBD", replacement + "|" + replacement + "|" + replacement},
        {"\xED\x9F\xBF|\xED\xA0\x80", "\xED\x9F\xBF|" + replacement + replacement + replacement},  // a surrogate
        {"\xC0\x80|\xE0\x80\x80",
         replacement + replacement + "|" + replacement + replacement + replacement},     // overlong
        {"\xF4\x8F\xBF\xBF|\xF4\x90", "\xF4\x8F\xBF\xBF|" + replacement + replacement},  // above U+10FFFF
        {"cut \xE2\x8C", "cut " + replacement},
        {"cut \xE2\x8Cx", "cut " + replacement + "x"},
        {"\x80\xFF", replacement + replacement},
    };
    for (const auto& [text, read] : rows) {
        EXPECT_EQ(readBack(text), std::pair(read, read));
    }
    // Long titles are cut between characters.
    const std::string title(SvgWriter::sMaxTitleSize - 1, 'x');
    EXPECT_EQ(readBack(title + "\xE2\x8C\x80").first, title);
}

TEST(SvgWriter, StaysWellFormedForRandomBytes) {
    std::mt19937 random(11);
    // Bytes that mean something are drawn more often than others.
    const std::string special = "<>&\"'\r\n\t]\xC3\xE2\xED\xEF\xF0\xF4\x80\xBF\xBE";
    for (int round = 0; round < 3000; ++round) {
        std::string text(1 + random() % 60, ' ');
        std::ranges::generate(text,
                              [&] { return random() % 2 == 0 ? special[random() % special.size()] : char(random()); });
        readBack(text);
    }
}

TEST(SvgWriter, KeepsTheBlanksThatRenderersWouldDrop) {
    std::mt19937 random(12);
    std::vector<std::string> texts;
    SvgWriter writer({});
    writer.startDocument("");
    for (int round = 0; round < 5000; ++round) {
        std::string& text = texts.emplace_back(1 + random() % 20, 'a');
        std::generate(text.begin(), text.end(), [&] { return " abcdef!<\t"[random() % (round % 4 == 0 ? 10 : 8)]; });
        writer.writeItem(*makeText(text));
    }
    SvgWriter::Group outlined;
    outlined.mOutlineColor = "#0000FF";
    writer.startGroup(outlined);
    writer.writeItem(*makeText(texts.emplace_back("A")));
    writer.endGroup();
    const auto elements = endDocument(writer);
    const auto written = test::findElements(elements, "text");
    ASSERT_EQ(written.size(), texts.size());
    for (std::size_t index = 0; index < texts.size(); ++index) {
        const bool isFragile =
            (" " + texts[index] + " ").find("  ") != std::string::npos || texts[index].find('\t') != std::string::npos;
        EXPECT_EQ(written[index].mText, texts[index]);
        EXPECT_EQ(written[index].getAttribute("xml:space"), isFragile ? "preserve" : "") << texts[index];
    }
    EXPECT_EQ(written.back().getAttribute("stroke"), "none") << "no outline inside an outlined group";
}

TEST(SvgWriter, WritesOnlyColoursAsColours) {
    for (const char* color :
         {"url(#x)", "url(http://example.com)", "#12345", "#GGGGGG", "red\" onload=\"x", "", "rgb(1,2,3)"}) {
        auto rect = makeRect({1, 2}, {3, 4});
        rect->setColor(color);
        const Written written(*rect);
        EXPECT_EQ(written.describe(), "rect height=4 width=3 x=1 y=2\n") << color;
        EXPECT_THAT(written.mKinds, ElementsAre(Kind::ColorUnknown)) << color;
    }
}

TEST(SvgWriter, WritesNamesOnceAndKeepsGlyphIds) {
    Node root;
    for (const char* id : {"longer than a<b", "much longer than a<b", "much longer than a<b", "g7", "p1"}) {
        auto rect = makeRect({1, 2}, {3, 4});
        rect->setId(id);
        rect->setClass("border \"x\"");
        rect->setStyleOption(ItemInterface::sStyleNonScalingStroke);
        root.appendChild(rect);
    }
    const std::string rest = " width=3 x=1 y=2\n";
    EXPECT_EQ(Written(root, SvgWriter::TextMode::Outlines).describe(),
              "rect class=border \"x\" height=4 id=longer than a<b" + rest +
                  "rect class=border \"x\" height=4 id=much longer than a<b" + rest +
                  "rect class=border \"x\" height=4" + rest + "rect class=border \"x\" height=4" + rest +
                  "rect class=border \"x\" height=4" + rest);
    EXPECT_EQ(test::findElements(Written(root).mElements, "rect")[3].getAttribute("id"), "g7");
}

TEST(SvgWriter, LeavesOutWhatDrawsNothing) {
    auto named = makeGroup({}, {std::make_shared<Node>()});
    named->setId("empty");
    auto hidden = makeRect({1, 2}, {3, 4});
    hidden->setVisible(false);
    hidden->setId("dummyTxtBB");
    const auto sameName = makeRect({1, 2}, {3, 4});
    sameName->setId("empty");
    const Written written(*makeGroup({}, {named, hidden, std::make_shared<Path>(), makeText(""), sameName}));
    EXPECT_EQ(written.describe(), "rect height=4 id=empty width=3 x=1 y=2\n");
    EXPECT_THAT(written.mWarnings, IsEmpty());
}

TEST(SvgWriter, LeavesOutWhatCannotBeWritten) {
    auto path = std::make_shared<Path>();
    path->moveTo({0, 0});
    path->lineTo({sInfinity, 0});
    auto text = makeText("A");
    text->setLength(sNan);
    const auto rect = makeRect({1, 2}, {3, 4});
    const auto group = makeGroup(Transform::makeTranslation({sInfinity, 0}), {rect});
    const Written written(
        *makeGroup({}, {path, text, makeImage("GIF89a", {}, {1, sNan}), group, makeRect({sNan, 0}, {1, 1}),
                        makeImage("http://example.com/logo.png", {}, {1, 1}), rect}));
    EXPECT_EQ(written.describe(), "rect height=4 width=3 x=1 y=2\n");
    const std::string reason = " was left out: a number is not finite";
    EXPECT_THAT(written.mWarnings,
                ElementsAre("a path" + reason, "a text" + reason, "an image" + reason, "a group" + reason,
                            "a rectangle" + reason, HasSubstr("an image was left out")));
    std::vector<Kind> kinds(5, Kind::NumberNotFinite);
    kinds.push_back(Kind::PictureUnknown);
    EXPECT_EQ(written.mKinds, kinds);
}

TEST(SvgWriter, LeavesOutElementsThatAreTooLong) {
    const auto text = makeText(std::string(SvgWriter::sMaxElementSize, 'x'));
    const Written written(*text);
    EXPECT_EQ(written.count("text"), 0U);
    EXPECT_THAT(written.mKinds, ElementsAre(Kind::ElementTooLong));
    text->setText(std::string(SvgWriter::sMaxElementSize - 1000, 'x'));
    EXPECT_EQ(Written(*text).count("text"), 1U);
}

TEST(SvgWriter, FlattensWhatIsNestedTooDeeply) {
    auto root = makeGroup({}, {makeRect({1, 2}, {3, 4})});
    root->setColor("#123456");
    for (int depth = 0; depth < 100; ++depth) {
        // Turned a quarter each time: a hundred of them are as good as none.
        root = makeGroup({{0, -1, 1, 0}, {0, 0}}, {root, makeText("x")});
        root->setId("level" + std::to_string(depth));
    }
    const Written written(*root);
    const auto deepest = std::max_element(written.mElements.begin(), written.mElements.end(),
                                          [](const auto& a, const auto& b) { return a.mDepth < b.mDepth; });
    EXPECT_EQ(deepest->mDepth, SvgWriter::sMaxDepth - 1) << "with room for a run of glyphs";
    EXPECT_EQ(written.count("text"), 100U);
    const auto rect = test::findElements(written.mElements, "rect").at(0);
    EXPECT_EQ(rect.getAttribute("fill"), "#123456");
    // All quarter turns above the rectangle, its own transform included, must add up to whole turns.
    std::ptrdiff_t quarterTurns = 0;
    for (std::size_t index = rect.mParent; index != 0; index = written.mElements[index].mParent) {
        ASSERT_EQ(written.mElements[index].getAttribute("transform"), "matrix(0 1 -1 0 0 0)");
        ++quarterTurns;
    }
    const std::string turns[] = {"", "matrix(0 1 -1 0 0 0)", "matrix(-1 0 0 -1 0 0)", "matrix(0 -1 1 0 0 0)"};
    const auto* own = std::ranges::find(turns, rect.getAttribute("transform"));
    ASSERT_NE(own, std::end(turns)) << rect.getAttribute("transform");
    EXPECT_EQ((quarterTurns + (own - turns)) % 4, 0);
}

/// Draws every character but blanks as the same triangle of one unit.
class TriangleSource final : public GlyphSource {
public:
    TriangleSource() {
        mOutline->moveTo({0, 0});
        mOutline->lineTo({1, 0});
        mOutline->lineTo({0.33333F, -1});
        mOutline->close();
    }
    void appendGlyphs(const Text& text, std::vector<PlacedGlyph>& glyphs) const override {
        float x = 0.0F;
        for (const char character : text.getText()) {
            if (character != ' ') {
                glyphs.push_back({mOutline.get(), {x, 0}, text.getSize()});
            }
            x += text.getSize();
        }
    }
    std::shared_ptr<const void> getOutlineOwner() const override { return mOutline; }

private:
    std::shared_ptr<Path> mOutline = std::make_shared<Path>();
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
    const std::string uses =
        "g transform=matrix(2 0 0 2 1 2)\n.use x=0 xlink:href=#g1\n.use x=2 xlink:href=#g1\n.use x=3 xlink:href=#g1\n";
    EXPECT_EQ(written.describe(), "defs\n.path d=M0 0L1 0L0.33333 -1Z id=g1\n" + uses + uses + "text" + sFont +
                                      sLength + " x=1 y=2 | without outlines\n");
    EXPECT_THAT(written.mKinds, ElementsAre(Kind::OutlinesMissing));
}

TEST(SvgWriter, EmbedsEachPictureOnceAndLeavesOutWhatItCovers) {
    using namespace std::string_literals;
    const auto ground = makeRect({0, 0}, {3, 2}, "#000000");
    const std::string definitions =
        "defs\n.image height=1 id=p1 preserveAspectRatio=none width=1 xlink:href=data:image/gif;base64,R0lGODlh\n"
        ".image height=1 id=p2 preserveAspectRatio=none width=1 xlink:href=data:image/gif;base64,R0lGODdh\n";
    const std::string uses =
        "use transform=matrix(2 0 0 1 0 -1) xlink:href=#p1\nuse transform=matrix(3 0 0 2 0 0) xlink:href=#p1\n";
    const std::string rect = "rect height=2 width=3 x=0 y=0\n";
    const std::string last = "use transform=translate(0 0) xlink:href=#p2\n";
    const auto root =
        makeGroup({}, {makeImage("GIF89a", {0, 0}, {2, -1}), ground, makeImage("data:,GIF89a", {0, 0}, {3, 2}), ground,
                       makeImage("data:image/gif;base64,R0lGODdh", {0, 0}, {1, 1}), ground,
                       makeImage("no picture", {0, 0}, {3, 2})});
    EXPECT_EQ(Written(*root).describe(), definitions + uses + rect + last + rect);
    SvgWriter::Options options;
    options.mDrawsPictureBackgrounds = true;
    EXPECT_EQ(Written(*root, options).describe(), definitions + uses.substr(0, uses.find('\n') + 1) + rect +
                                                      uses.substr(uses.find('\n') + 1) + rect + last + rect);
}

TEST(SvgWriter, TellsTextThatCannotBeReadOnItsFill) {
    const struct {
        std::shared_ptr<ItemInterface> mGround;
        const char* mText;
        bool mIsTold;
    } rows[] = {
        {makeRect({0, 0}, {20, 4}, "#000000"), "#000000", true},
        {makeRect({0, 0}, {20, 4}, "#FFFFFF"), "#000000", false},
        {makeRect({0, 0}, {20, 4}, "#FFFFFF"), "#959595", true},   // 2.99 to 1
        {makeRect({0, 0}, {20, 4}, "#FFFFFF"), "#949494", false},  // 3.03 to 1
        {makeRect({0, 0}, {20, 4}, "none"), "#000000", false},
        {makeRect({0, 3}, {20, 4}, "#000000"), "#000000", false},  // beside it
        {makeGroup({{1, 0, 0, -1}, {0, 4}}, {makeRect({0, 0}, {20, 4}, "#000000")}), "#000000", true},
        {makeGroup({}, {makeRect({0, 0}, {20, 4}, "#000000"), makeRect({0, 0}, {20, 4}, "#FFFF00")}), "#000000", false},
        {makeGroup({}, {makeRect({0, 0}, {20, 4}, "#000000"), makeImage("GIF89a\1", {0, 0}, {20, 4})}), "#000000",
         false},
    };
    for (const auto& row : rows) {
        auto text = makeText("A");
        text->setColor(row.mText);
        const Written written(*makeGroup({}, {row.mGround, text, text}));
        EXPECT_EQ(std::count(written.mKinds.begin(), written.mKinds.end(), Kind::TextUnreadable), row.mIsTold ? 1 : 0)
            << &row - rows;
    }
}

TEST(SvgWriter, SpellsEachFontOnce) {
    // More fonts than are remembered for a while, each three times.
    Node root;
    for (int index = 0; index < 90; ++index) {
        auto text = makeText("A");
        text->setFont(index % 30 == 1 ? "O'Brien <\\>\n" : "Arial");
        text->setSize(1.0F + static_cast<float>(index % 30));
        text->setBold(index % 30 == 1);
        text->setItalic(index % 30 == 2);
        root.appendChild(makeGroup({}, {text}));
    }
    const Written written(root);
    const std::vector<test::XmlElement> texts = test::findElements(written.mElements, "text");
    ASSERT_EQ(texts.size(), 90U);
    for (std::size_t index = 0; index < texts.size(); ++index) {
        const std::size_t font = index % 30;
        const std::string name =
            font < 26 ? std::string(1, char('A' + font)) : "A" + std::string(1, char('A' + font - 26));
        EXPECT_EQ(texts[index].getAttribute("class"), name);
    }
    const std::string rules = test::findElements(written.mElements, "style").at(1).mText;
    EXPECT_EQ(std::count(rules.begin(), rules.end(), '{'), 30);
    EXPECT_THAT(rules,
                HasSubstr("\n.A{font-family:'Arial',sans-serif;font-size:1px;font-weight:normal;font-style:normal}\n"
                          ".B{font-family:'O\\'Brien <\\\\> ',sans-serif;font-size:2px;font-weight:bold;"
                          "font-style:normal}\n"
                          ".C{font-family:'Arial',sans-serif;font-size:3px;font-weight:normal;font-style:italic}\n"));
}

TEST(SvgWriter, FallsBackOnFontsOfTheFamilysKind) {
    const std::pair<const char*, const char*> rows[] = {
        {"Times New Roman", "serif"},      {"LiberationSerif", "serif"}, {"Courier New", "monospace"},
        {"DejaVu Sans Mono", "monospace"}, {"Noto Sans", "sans-serif"},  {"MS Sans Serif", "sans-serif"},
        {"romans", "sans-serif"},          {"ISOCPEUR", "sans-serif"},   {"", "sans-serif"},
    };
    for (const auto& [family, generic] : rows) {
        const auto text = makeText("a");
        text->setFont(family);
        const std::string rules = test::findElements(Written(*text).mElements, "style").at(1).mText;
        EXPECT_THAT(rules, HasSubstr(std::string(*family != 0 ? "'," : ":") + generic + ";")) << family;
    }
}

TEST(SvgWriter, WritesPathsInAbsoluteCommands) {
    Path path;
    path.lineTo({1, 1});
    path.cubicTo({1, 2}, {3, 4}, {5, -6});
    path.arcTo({20, -10}, 30, true, false, {9, 9});
    path.close();
    EXPECT_EQ(Written(path).describe(), "path d=M0 0L1 1C1 2 3 4 5 -6A20 10 30 1 0 9 9Z\n");
    // Radii of half turns grow to the distance of the rounded ends.
    PathBuilder builder;
    builder.appendEllipse({0.0004F, 0}, {2, 1}, 0, 2 * Wm4::Mathf::PI);
    EXPECT_EQ(Written(*builder.createPathItem(true)).describe(),
              "path d=M2 0A1.98 0.99 0 0 1 -2 0A1.98 0.99 0 0 1 2 0Z\n");
}

}  // namespace
}  // namespace kt::svg
