#include "platform/svg/ComputeEstimatedBoundingBox.h"
#include "platform/svg/Text.h"
#include "tests/migration/MigrationTestSupport.h"

#include <algorithm>
#include <functional>
#include <map>

namespace migrationtest {
namespace {

using Text = kt::svg::Text;
using Segment = ktLegacy::ktAnnotationText::TextSegment;
using Properties = ktLegacy::ktAnnotationText::TextProperties;

class TextMigrationTest : public MigrationTest {
protected:
    /// The group that the text becomes.
    std::shared_ptr<kt::svg::Node> convert(const Wm4::Vector3<unsigned char>& colour = {255, 128, 0}) {
        auto parent = std::make_shared<kt::svg::Node>();
        ktLegacy::ktAnnotationMigration migration(0, nullptr, nullptr, 3.0F);
        EXPECT_TRUE(migration.migrateTextAnnotation(&mText, *parent, colour));
        EXPECT_EQ(parent->getChildren().size(), 1U);
        return std::dynamic_pointer_cast<kt::svg::Node>(parent->getChildren().front());
    }
    static std::vector<const Text*> findTexts(const kt::svg::Node& group) {
        std::vector<const Text*> texts;
        for (const auto& child : group.getChildren()) {
            texts.push_back(as<Text>(child));
        }
        std::erase(texts, nullptr);
        return texts;
    }
    /// The text of the lines from the top down.
    Strings convertToLines() {
        std::map<float, std::string, std::greater<>> lines;
        const auto group = convert();
        for (const Text* text : findTexts(*group)) {
            lines[std::round((text->getTransform().value_or(kt::svg::Transform{}) * text->getPosition()).y)] +=
                text->getText();
        }
        Strings result;
        for (const auto& [y, line] : lines) {
            result.push_back(line);
        }
        return result;
    }

    ktLegacy::ktAnnotationText mText;
};

TEST_F(TextMigrationTest, DropsBlankSegmentsAndLines) {
    const std::vector<std::pair<std::vector<Strings>, Strings>> rows = {
        {{{"A"}, {"B"}}, {"A", "B"}},
        {{{"A"}, {}, {""}, {"   "}, {"B"}}, {"A", "B"}},
        {{{"x", " ", "y"}}, {"xy"}},
        {{{" x", "y "}}, {" xy "}},
        {{}, {" "}},
        {{{}}, {" "}},
        {{{"   "}}, {" "}},
        {{{"", " "}, {"  "}}, {" "}},
    };
    for (const auto& [content, expected] : rows) {
        mText.mLines.clear();
        for (const Strings& segments : content) {
            auto& line = mText.mLines.emplace_back();
            for (const std::string& segment : segments) {
                line.emplace_back(segment, Segment::Normal);
            }
        }
        EXPECT_EQ(convertToLines(), expected) << testing::PrintToString(content);
    }
}

TEST_F(TextMigrationTest, OwnPropertiesReplaceAllDefaultsAndTheColour) {
    mText.mDefaultTextProperties.mHeight = 250;
    mText.mDefaultTextProperties.mStyle = 0xFD;
    mText.mDefaultTextProperties.mFontName = "Liberation Serif";
    auto& line = mText.mLines.emplace_back();
    line.emplace_back("default", Segment::Normal);
    Segment& own = line.emplace_back("own", Segment::Normal);
    Properties properties("Liberation Mono", 1.0F);
    properties.mStyle = 2;
    own.setTextProperties(properties);

    const auto group = convert({255, 128, 0});
    EXPECT_EQ(group->getColor(), "#FF8000");
    EXPECT_EQ(group->getTransform(), (kt::svg::Transform{{1.0F, 0.0F, 0.0F, -1.0F}, {0.0F, 0.0F}})) << "mirrored";
    const auto texts = findTexts(*group);
    ASSERT_EQ(texts.size(), 2U);
    EXPECT_EQ(texts[0]->getSize(), 7.9375F);
    EXPECT_EQ(texts[0]->getFont(), "Liberation Serif");
    EXPECT_TRUE(texts[0]->isBold() && !texts[0]->isItalic());
    EXPECT_EQ(texts[0]->getColor().value_or("#FF8000"), "#FF8000");
    EXPECT_EQ(texts[1]->getSize(), 3.175F);
    EXPECT_EQ(texts[1]->getFont(), "Liberation Mono");
    EXPECT_TRUE(!texts[1]->isBold() && texts[1]->isItalic());
    EXPECT_EQ(texts[1]->getColor(), "#000000") << "the colour of default properties, not the annotation's";
}

TEST_F(TextMigrationTest, UndefinedSegmentTypesAreNormal) {
    for (const int type : {0, 1, 2, 3, 7, 255}) {
        SCOPED_TRACE(type);
        mText.mLines.clear();
        mText.mLines.emplace_back().emplace_back("x", static_cast<Segment::SegmentType>(type));
        const auto group = convert();
        const auto texts = findTexts(*group);
        ASSERT_EQ(texts.size(), 1U);
        EXPECT_FLOAT_EQ(texts[0]->getSize(), type == 1 || type == 2 ? 2.00025F : 3.175F);
    }
}

TEST_F(TextMigrationTest, TheFrameLeavesAMarginAroundTheText) {
    mText.setText("margin");
    const auto [annotation, box] = migrateWithBox(&mText);
    ASSERT_NE(annotation, nullptr);
    const auto group = convert();
    const auto isBlockBox = [](const auto& item) { return item->getId() == "dummyTxtBB"; };
    EXPECT_EQ(std::count_if(group->getChildren().begin(), group->getChildren().end(), isBlockBox), 1);
    const kt::svg::BoundingBox text = kt::svg::ComputeEstimatedBoundingBox(*group);
    EXPECT_NEAR(box.getWidth(), text.getWidth() + 4.0F, 1e-5F);
    EXPECT_NEAR(box.getHeight(), text.getHeight() + 4.0F, 1e-5F);
    EXPECT_NEAR(box.getMinPoint().x, -box.getMaxPoint().x, 1e-5F);
    EXPECT_NEAR(box.getMinPoint().y, -box.getMaxPoint().y, 1e-5F);

    mText.mDefaultTextProperties.mHeight = 0;
    EXPECT_NE(migrate(&mText), nullptr) << "text of no size takes place, too";
    EXPECT_EQ(takeLog(), Strings());
}

TEST_F(TextMigrationTest, TextIsWhiteOnlyOnColoursNextToBlack) {
    const std::vector<std::pair<Wm4::Vector3<unsigned char>, std::string>> rows = {
        {{0, 0, 0}, "#FFFFFF"}, {{0, 0, 1}, "#FFFFFF"}, {{0, 0, 2}, "#FFFFFF"},       {{0, 0, 3}, "#000000"},
        {{1, 0, 0}, "#000000"}, {{0, 1, 0}, "#000000"}, {{255, 255, 255}, "#000000"}, {{20, 20, 20}, "#000000"},
    };
    mText.setText("A");
    for (const auto& [colour, expected] : rows) {
        mText.mColor = colour;
        const Annotation annotation = migrate(&mText);
        ASSERT_NE(annotation, nullptr);
        EXPECT_EQ(annotation->mRoot->getChildren().back()->getColor(), expected) << testing::PrintToString(colour);
    }
}

}  // namespace
}  // namespace migrationtest
