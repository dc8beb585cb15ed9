#include "platform/svg/ComputeEstimatedBoundingBox.h"
#include "platform/svg/Image.h"
#include "platform/svg/Rect.h"
#include "platform/svg/Text.h"
#include "tests/migration/MigrationTestSupport.h"

#include <algorithm>
#include <functional>
#include <map>

namespace migrationtest {
namespace {

using kt::svg::Node;
using kt::svg::Text;
using kt::svg::Transform;
using ktLegacy::Properties;
using ktLegacy::Segment;

TEST_F(MigrationTest, SkipsNullEntriesAndRefusesNullViewsAndUsedResults) {
    ktLegacy::ktAnnotationMigration migration(7, giveRaster, nullptr, 3.0F);
    const kt::ktPointer<ktLegacy::ktAnnotationView> view(new ktLegacy::ktAnnotationView);
    view->mAnnotations = {nullptr};
    kt::ktPointer<kt::ktCadAnnotationView> result;
    EXPECT_FALSE(migration.migrateAnnotationView(nullptr, result));
    EXPECT_EQ(result, nullptr);
    EXPECT_TRUE(migration.migrateAnnotationView(view, result));
    ASSERT_NE(result, nullptr);
    EXPECT_TRUE(result->mAnnotations.empty());
    const kt::ktCadAnnotationView* before = result.get();
    EXPECT_FALSE(migration.migrateAnnotationView(view, result));
    EXPECT_EQ(result.get(), before);
    EXPECT_EQ(takeLog(), Strings());
}

TEST_F(MigrationTest, ConvertsEveryFlagsByte) {
    for (unsigned int byte = 0; byte < 256; ++byte) {
        SCOPED_TRACE(byte);
        const auto raster = makeRaster("r", 10.0F, 4.0F);
        raster->setFlags(static_cast<std::uint8_t>(byte));
        const Annotation annotation = migrate(raster);
        // By the upper three bits: ignore depth 0x20, scale locked 0x40 or else 0x10, frame not locked 0x80.
        constexpr int expected[8] = {0x90, 0xB0, 0xC0, 0xE0, 0x10, 0x30, 0x40, 0x60};
        ASSERT_EQ(annotation != nullptr, (byte & 0x0F) != 0x0F) << "the last frame code is undefined";
        EXPECT_TRUE(annotation == nullptr || annotation->mFlags == expected[byte >> 5]);
    }
    EXPECT_EQ(takeLog(), Strings());
}

class RasterMigrationTest : public MigrationTest {
protected:
    bool migrateRaster(ktLegacy::ktAnnotationMigration::RasterCallback callback, void* userData = nullptr) {
        return ktLegacy::ktAnnotationMigration(0, callback, userData, 3.0F).migrateRasterAnnotation(&mRaster, mParent);
    }
    ktLegacy::ktAnnotationRaster mRaster;
    Node mParent;
};

TEST_F(RasterMigrationTest, AsksTheCallback) {
    const auto countCalls = [](const std::string&, std::string& data, void* userData) {
        EXPECT_TRUE(data.empty());
        ++*static_cast<int*>(userData);
        return true;
    };
    int calls = 0;
    EXPECT_TRUE(migrateRaster(countCalls, &calls)) << "empty images are well";
    EXPECT_EQ(calls, 1);
    mRaster.mRasterName = std::string("logo\0\xFF", 6);
    EXPECT_TRUE(migrateRaster(giveRaster));
    ASSERT_EQ(mParent.getChildren().size(), 4U);
    EXPECT_EQ(as<kt::svg::Image>(mParent.getChildren()[3])->getSource(), mRaster.mRasterName) << "copied byte by byte";
    EXPECT_FALSE(migrateRaster(nullptr));
    mRaster.mRasterName = "missing";
    EXPECT_FALSE(migrateRaster(giveRaster));
    EXPECT_THAT(takeLog(), ElementsAre("No raster callback", "Fail to retrieve raster 'missing'"));
    EXPECT_EQ(mParent.getChildren().size(), 4U);
}

/// Content of 10 by 4 units centred on the origin: its corners are (-5, -2) and (5, 2), tips stick out by 1.6.
class AnnotationFrameTest : public MigrationTest {
protected:
    /// The frame, whose style is checked.
    template <typename Item>
    const Item* drawFrame(int code, float width = 10.0F, float height = 4.0F) {
        const auto raster = makeRaster("framed", width, height);
        raster->mFrameShape = static_cast<Legacy::FrameShape>(code);
        raster->mColor = {0x0A, 0xFF, 0x90};
        std::tie(mAnnotation, mBox) = migrateWithBox(raster);
        EXPECT_EQ(mAnnotation->mRoot->getChildren().size(), 3U);  // with the rectangle and the image of the content
        const Item* frame = as<Item>(mAnnotation->mRoot->getChildren().front());
        EXPECT_NE(frame, nullptr);
        EXPECT_EQ(frame->getColor(), "#0AFF90");
        EXPECT_EQ(frame->getStyleOption(), 1);
        EXPECT_EQ(frame->getOutlineColor(), code == 0 ? "none" : "#000000");
        EXPECT_EQ(frame->getClass().value_or("no class"), code == 0 ? "border" : "no class");
        EXPECT_FALSE(frame->getTransform().has_value()) << "made in place";
        return frame;
    }

    Annotation mAnnotation;
    kt::svg::BoundingBox mBox;
};

TEST_F(AnnotationFrameTest, DrawsRectangles) {
    struct Row {
        int mCode;
        Vector2 mContent, mSize;
    };
    std::vector<Row> rows = {{2, {10, 4}, {10, 10}}, {2, {4, 10}, {10, 10}}, {2, {4, 4}, {4, 4}}};
    for (const int code : {0, 1, 3, 4, 9, 10, 11, 12, 13, 14}) {
        rows.push_back({code, {10, 4}, {10, 4}});
    }
    for (const auto& [code, content, size] : rows) {
        SCOPED_TRACE(code);
        const auto* frame = drawFrame<kt::svg::Rect>(code, content.x, content.y);
        EXPECT_EQ(frame->getPosition(), size * -0.5F);
        EXPECT_EQ(frame->getSize(), size);
        EXPECT_EQ(mBox.getMinPoint(), size * -0.5F);
        EXPECT_EQ(mBox.getSize(), size);
        const auto shift = Transform::makeTranslation(content * -0.5F);
        EXPECT_EQ(mAnnotation->mRoot->getChildren()[1]->getTransform(), shift) << "content is centred";
        EXPECT_EQ(mAnnotation->mRoot->getChildren()[2]->getTransform(), shift);
    }
}

TEST_F(AnnotationFrameTest, DrawsFlagsAndParallelograms) {
    const std::vector<std::pair<int, std::vector<Vector2>>> rows = {
        {5, {{-5.0F, 2.0F}, {5.0F, 2.0F}, {6.6F, 0.0F}, {5.0F, -2.0F}, {-5.0F, -2.0F}}},
        {6, {{-6.6F, 0.0F}, {-5.0F, 2.0F}, {5.0F, 2.0F}, {5.0F, -2.0F}, {-5.0F, -2.0F}}},
        {7, {{-6.6F, 0.0F}, {-5.0F, 2.0F}, {5.0F, 2.0F}, {6.6F, 0.0F}, {5.0F, -2.0F}, {-5.0F, -2.0F}}},
        {8, {{-5.0F, -2.0F}, {-6.6F, 2.0F}, {5.0F, 2.0F}, {-5.0F + 11.6F, -2.0F}}},
    };
    for (const auto& [code, points] : rows) {
        SCOPED_TRACE(code);
        const auto* frame = drawFrame<kt::svg::Path>(code);
        EXPECT_EQ(lettersOf(*frame), "M" + std::string(points.size() - 1, 'L') + "Z");
        EXPECT_EQ(frame->getPoints(), points);
        EXPECT_EQ(mBox.getMinPoint(), Vector2(-5.0F, -2.0F)) << "tips do not count";
        EXPECT_EQ(mBox.getMaxPoint(), Vector2(5.0F, 2.0F)) << "tips do not count";
    }
}

/// A parent of 10 by 4 units at (100, 200, 7) and a child of 6 by 2 units at (3, 5, 9).
class SubAnnotationTest : public MigrationTest {
protected:
    SubAnnotationTest() {
        mParent->mPosition = {100.0F, 200.0F, 7.0F};
        mChild->mPosition = {3.0F, 5.0F, 9.0F};
        mChild->mLeaders = {makeLeader({0.0F, 0.0F, 0.0F}, 0)};
    }

    Raster mParent = makeRaster("parent", 10.0F, 4.0F);
    Raster mChild = makeRaster("child", 6.0F, 2.0F);
};

TEST_F(SubAnnotationTest, StandsWhereTheAnchorCodeSays) {
    // The sides of the parent are at 5 and 2, half the child is 3 by 1; y points down in the content and up in the
    // view.
    const Vector2 offsets[] = {{3, -5}, {-2, 3}, {0, 3},   {2, 3}, {-2, -3}, {0, -3}, {2, -3},
                               {-8, 1}, {-8, 0}, {-8, -1}, {8, 1}, {8, 0},   {8, -1}};
    for (int code = 0; code <= 12; ++code) {
        SCOPED_TRACE(code);
        const Vector2 offset = offsets[code];
        const Vector3 anchor(100 + offset.x, 200 - offset.y, 7);
        mParent->removeSubAnnots();
        addChild(*mParent, mChild, code);
        const auto [annotation, box] = migrateWithBox(mParent);
        ASSERT_NE(annotation, nullptr);
        ASSERT_EQ(annotation->mRoot->getChildren().size(), 4U);
        const auto* root = as<Node>(annotation->mRoot->getChildren().back());
        ASSERT_NE(root, nullptr);
        EXPECT_EQ(root->getTransform(), Transform::makeTranslation(offset)) << "upright and unscaled";
        EXPECT_EQ(box.getSize(), Vector2(10.0F, 4.0F)) << "children do not widen the outline";
        ASSERT_EQ(annotation->mLeaderAnchors.size(), 1U);
        EXPECT_EQ(annotation->mLeaderAnchors[0].mAnchor, anchor);
        EXPECT_EQ(annotation->mLeaderAnchors[0].mOffset, offset);
        ASSERT_EQ(annotation->mSegments.size(), 1U);
        EXPECT_EQ(annotation->mSegments[0].mEnd, anchor);
    }
    mParent->mFrameShape = Legacy::FrameSquare;
    mParent->removeSubAnnots();
    addChild(*mParent, mChild, 2);
    EXPECT_EQ(migrate(mParent)->mLeaderAnchors.at(0).mOffset, Vector2(0.0F, 6.0F)) << "the squared outline counts";
}

TEST_F(SubAnnotationTest, FailsTheParentWhenAChildCannotBeAdded) {
    // Causes that no variant document has.
    const kt::ktPointer<Legacy> undefined(new Legacy(Legacy::Undefined));
    const Strings failed = {"Fail to migrate sub annotation of 'parent'"};
    const std::tuple<kt::ktPointer<Legacy>, int, Strings> rows[] = {
        {nullptr, 1, failed}, {undefined, 1, failed}, {mChild, 13, {}}, {mChild, -1, {}}};
    for (const auto& [child, code, log] : rows) {
        mParent->removeSubAnnots();
        addChild(*mParent, child, code);
        EXPECT_EQ(migrate(mParent), nullptr) << code;
        EXPECT_EQ(takeLog(), log) << code;
    }

    // Leaders of the last child alone are well; those of grandchildren stay behind.
    mParent->removeSubAnnots();
    const auto plain = makeRaster("plain", 6.0F, 2.0F);
    const auto measured = makeRaster("measured", 6.0F, 2.0F);
    measured->mMeasureLeaders = {makeMeasure({}, {1.0F, 0.0F, 0.0F}, {0.0F, 1.0F, 0.0F})};
    measured->mLeaders = {makeLeader({1.0F, 1.0F, 0.0F}, 3), makeLeader({2.0F, 1.0F, 0.0F}, 3)};
    addChild(*mChild, measured);
    addChild(*mParent, plain, 1);
    addChild(*mParent, mChild, 2);
    const Annotation annotation = migrate(mParent);
    ASSERT_NE(annotation, nullptr);
    EXPECT_EQ(annotation->mSegments.size(), 1U);
    EXPECT_TRUE(annotation->mShapes.empty());
}

class TextMigrationTest : public MigrationTest {
protected:
    /// The group that the text becomes.
    std::shared_ptr<Node> convert(const Wm4::Vector3<unsigned char>& colour = {255, 128, 0}) {
        auto parent = std::make_shared<Node>();
        ktLegacy::ktAnnotationMigration migration(0, nullptr, nullptr, 3.0F);
        EXPECT_TRUE(migration.migrateTextAnnotation(&mText, *parent, colour));
        EXPECT_EQ(parent->getChildren().size(), 1U);
        return std::dynamic_pointer_cast<Node>(parent->getChildren().front());
    }
    static std::vector<const Text*> findTexts(const Node& group) {
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
            lines[std::round((text->getTransform().value_or(Transform{}) * text->getPosition()).y)] += text->getText();
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
        {{{" x", "\t", "y "}}, {" x y "}},  // a tab counts
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
    EXPECT_EQ(group->getTransform(), (Transform{{1.0F, 0.0F, 0.0F, -1.0F}, {0.0F, 0.0F}})) << "mirrored";
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
    EXPECT_EQ(migrate(&mText), nullptr) << "text of no size takes no place";
    EXPECT_EQ(takeLog(), Strings{"Empty frame"});
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
