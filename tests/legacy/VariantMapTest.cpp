#include "legacy/ktAnnotationRaster.h"
#include "legacy/ktAnnotationText.h"
#include "legacy/ktAnnotationView.h"
#include "platform/system/ktVariantJson.h"
#include "platform/system/ktVariantMapImpl.h"
#include "tests/legacy/LegacyLibraryTest.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <span>
#include <string>
#include <vector>

namespace ktLegacy {
namespace {

using kt::ktPointer;
using testing::ElementsAre;
using testing::IsEmpty;
using Map = kt::ktVariant::ktVariantMapImpl;
using Messages = std::vector<std::string>;
using Point = Wm4::Vector3<float>;
using Colour = Wm4::Vector3<unsigned char>;
using Segment = ktAnnotationText::TextSegment;

constexpr kt::ktStreamVersion s6_16{6, 16};
constexpr kt::ktStreamVersion s6_17{6, 17};
constexpr kt::ktStreamVersion s6_21{6, 21};
constexpr kt::ktStreamVersion s6_22{6, 22};

class VariantMap : public ktTest::LegacyLibraryTest {};

/// The map of a JSON object; quotes may be written as apostrophes.
Map parse(std::string json) {
    std::replace(json.begin(), json.end(), '\'', '"');
    kt::ktVariant value;
    kt::ktJsonError error;
    EXPECT_TRUE(kt::ktJsonReader().parse(std::as_bytes(std::span(json)), value, error)) << json << error.mMessage;
    return value.toMap();
}

/// An annotation read from a JSON object, with what the reading told.
template <typename Annotation>
struct Loaded {
    explicit Loaded(const std::string& json, kt::ktStreamVersion version = s6_22) { load(json, version); }
    void load(const std::string& json, kt::ktStreamVersion version = s6_22) {
        mIsUsable = mAnnotation->loadFromVariant(parse(json), version, mErrors);
    }
    Annotation* operator->() { return mAnnotation.get(); }

    ktPointer<Annotation> mAnnotation{new Annotation};
    Messages mErrors;
    bool mIsUsable = false;
};
using LoadedText = Loaded<ktAnnotationText>;
using LoadedRaster = Loaded<ktAnnotationRaster>;

TEST_F(VariantMap, OldVersionsAreRefusedWithOneMessage) {
    LoadedText text("{'name': 'new'}", s6_16);
    EXPECT_FALSE(text.mIsUsable);
    EXPECT_EQ(text->GetName(), "");
    EXPECT_THAT(text.mErrors, ElementsAre("invalid version for annotation interface"));
}

TEST_F(VariantMap, BaseKeysAreRead) {
    LoadedRaster raster(
        "{'name': 5.5, 'color': 'Ff8000', 'position': [1, 2.5, -3], 'isframelocked': true,"
        "'isignoreztest': '1', 'isscalelocked': 0, 'frameshape': 'oblongright', 'metadata': {'k': 1},"
        "'Name': 'another key', 'rastername': 7, 'sizeem': ['2', true]}");
    EXPECT_TRUE(raster.mIsUsable);
    EXPECT_THAT(raster.mErrors, IsEmpty());
    EXPECT_EQ(raster->GetName(), "5.5");
    EXPECT_EQ(raster->mColor, Colour(255, 128, 0));
    EXPECT_EQ(raster->mPosition, Point(1, 2.5F, -3));
    EXPECT_EQ(raster->getFlags(), 0x80 | 0x20 | 14);
    EXPECT_EQ(raster->mMetadata.at("k").toInteger(), 1);
    EXPECT_EQ(raster->mRasterName, "7");
    EXPECT_EQ(raster->mSizeEm, Wm4::Vector2<float>(2, 1)) << "elements of any kind";
}

TEST_F(VariantMap, AbsentKeysMeanTheirDefaults) {
    LoadedRaster raster(
        "{'name': 'n', 'color': '010203', 'position': [1, 2, 3], 'leaders': [{}], 'measures': [],"
        "'isframelocked': true, 'frameshape': 'noframe', 'metadata': {'k': 1}, 'rastername': 'r',"
        "'sizeem': [2, 3]}");
    raster->setFlags(0xFF);
    raster.load("{}");
    EXPECT_THAT(raster.mErrors, IsEmpty());
    EXPECT_EQ(raster->GetName(), "");
    EXPECT_EQ(raster->mColor, Colour(1, 2, 3));
    EXPECT_EQ(raster->mPosition, Point(1, 2, 3));
    EXPECT_TRUE(raster->mLeaders.empty());
    EXPECT_EQ(raster->getFlags(), 1);
    EXPECT_TRUE(raster->mMetadata.empty());
    EXPECT_EQ(raster->mRasterName, "");
    EXPECT_EQ(raster->mSizeEm, Wm4::Vector2<float>(2, 3));
}

TEST_F(VariantMap, ColoursAreParsedLeniently) {
    const Colour kept(9, 9, 9);
    struct Case {
        const char* mJson;
        Colour mColour;
        bool mIsRefused;
    };
    for (const Case& c : {Case{"'FF8000'", {255, 128, 0}, false},
                          Case{"'000000'", {0, 0, 0}, false},
                          Case{"'00000g'", kept, true},
                          Case{"'12abzz'", {0, 18, 171}, false},
                          Case{"''", kept, false},
                          Case{"'fff'", kept, true},
                          Case{"'fffffff'", kept, true},
                          Case{"' \\t12AB'", {0, 18, 171}, false},
                          Case{"'0x12ab'", {0, 18, 171}, false},
                          Case{"'0X12aB'", {0, 18, 171}, false},
                          Case{"'0xg000'", kept, true},
                          Case{"'-00001'", {255, 255, 255}, false},
                          Case{"'+0000f'", {0, 0, 15}, false},
                          Case{"'- 0001'", kept, true},
                          Case{"'1\\u0000abcd'", {0, 0, 1}, false},
                          Case{"'      '", kept, true},
                          Case{"123456", {18, 52, 86}, false},
                          Case{"null", kept, false},
                          Case{"[]", kept, false},
                          Case{"true", kept, true}}) {
        LoadedRaster raster("{'color': '090909'}");
        raster.load(std::string("{'color': ") + c.mJson + "}");
        EXPECT_TRUE(raster.mIsUsable);
        EXPECT_EQ(raster->mColor, c.mColour) << c.mJson;
        EXPECT_EQ(raster.mErrors, c.mIsRefused ? Messages{"invalid 'color' field"} : Messages{}) << c.mJson;
    }
}

TEST_F(VariantMap, WordsAreComparedExactly) {
    const auto frame = [](const std::string& word) {
        return static_cast<int>(LoadedRaster("{'frameshape': '" + word + "'}")->mFrameShape);
    };
    const std::vector<std::string> frames{"noframe",   "rectangle", "square",   "diamond",       "triangle",
                                          "flagright", "flagleft",  "flagboth", "parallelogram", "hexagon",
                                          "pentagon",  "circle",    "oblong",   "oblongleft",    "oblongright"};
    for (std::size_t value = 0; value < frames.size(); ++value) {
        EXPECT_EQ(frame(frames[value]), static_cast<int>(value));
    }
    EXPECT_EQ(frame("Circle"), 1);
    EXPECT_EQ(frame(""), 1);

    const std::vector<std::string> heads{"none", "square", "circle", "arrow", "plus", "cross", "triangle"};
    const std::vector<std::string> arrows{"unspecified", "outout", "inout", "outin"};
    for (std::size_t value = 0; value < heads.size(); ++value) {
        EXPECT_EQ(LoadedRaster("{'leaders': [{'head': '" + heads[value] + "'}]}")->mLeaders.at(0).mHead,
                  static_cast<int>(value));
    }
    for (std::size_t value = 0; value < arrows.size(); ++value) {
        const std::string vectors = "'A': [0, 0, 0], 'B': [0, 0, 0], 'V': [0, 0, 0]";
        const std::string json = "{'measures': [{" + vectors + ", 'arrowdir': '" + arrows[value] + "'}]}";
        EXPECT_EQ(LoadedRaster(json)->mMeasureLeaders.at(0).mArrowDirection, static_cast<int>(value));
        EXPECT_EQ(LoadedRaster(json, s6_21)->mMeasureLeaders.at(0).mArrowDirection, 0) << "from 6.22 on only";
    }
    for (const auto& [word, value] :
         {std::pair("rt", 12), std::pair("rc", 11), std::pair("rb", 12), std::pair("lt", 9), std::pair("lc", 8),
          std::pair("lb", 7), std::pair("tr", 6), std::pair("tc", 5), std::pair("tl", 4), std::pair("br", 3),
          std::pair("bc", 2), std::pair("bl", 1), std::pair("RB", 0), std::pair("", 0), std::pair("none", 0)}) {
        LoadedRaster raster(std::string("{'children': [{'type': 'raster', 'anchorloc': '") + word + "'}]}");
        EXPECT_EQ(raster->getSubAnnots().front().mAnchorLocation, value) << word;
    }
}

TEST_F(VariantMap, ABadPositionEndsTheReading) {
    for (const char* position : {"[1, 2]", "[1, 2, 3, 4]", "[1, 2, '3']", "[1, 2, true]", "'x'", "null", "{}"}) {
        LoadedRaster raster(std::string("{'name': 'n', 'color': '010203', 'leaders': 5, 'frameshape': 'circle',") +
                            "'position': " + position + "}");
        EXPECT_FALSE(raster.mIsUsable) << position;
        EXPECT_THAT(raster.mErrors, ElementsAre("invalid 'position' field"));
        EXPECT_EQ(raster->GetName(), "n");
        EXPECT_EQ(raster->mColor, Colour(1, 2, 3));
        EXPECT_EQ(raster->getFlags(), 1);
    }
}

TEST_F(VariantMap, MessagesComeInTheOrderOfTheSteps) {
    LoadedText text(
        "{'childs': [{'type': 'Text'}], 'color': 'x', 'defaulttextprop': 1, 'leaders': 1, 'measures': [1],"
        "'lines': ['x', [1, {'text': 'y'}], 2, []], 'text': 'unused'}");
    EXPECT_TRUE(text.mIsUsable);
    EXPECT_THAT(text.mErrors,
                ElementsAre("invalid 'color' field", "invalid 'leaders' field", "invalid 'measures' field content",
                            "invalid annotation type", "invalid 'defaulttextprop' field", "invalid line",
                            "invalid segment", "invalid line"));
    ASSERT_EQ(text->mLines.size(), 2U);
    ASSERT_EQ(text->mLines[0].size(), 1U);
    EXPECT_STREQ(text->mLines[0][0].getText(), "y");
    EXPECT_TRUE(text->mLines[1].empty());
}

TEST_F(VariantMap, LeadersFollowTheVersion) {
    LoadedRaster old("{'leaders': [[1, 2, 3], 'x', [1, 2], {'pos': [1, 2, 3]}]}", s6_21);
    ASSERT_EQ(old->mLeaders.size(), 1U);
    EXPECT_EQ(old->mLeaders[0].mPosition, Point(1, 2, 3));
    EXPECT_THAT(old.mErrors, ElementsAre("invalid 'leaders' field content", "invalid 'leaders' field content",
                                         "invalid 'leaders' field content"));

    LoadedRaster recent("{'leaders': [{'pos': [1, 2], 'head': 'arrow'}, [1, 2, 3], {'pos': [4, 5, 6]}]}");
    ASSERT_EQ(recent->mLeaders.size(), 2U);
    EXPECT_EQ(recent->mLeaders[0].mPosition, Point::ZERO);
    EXPECT_EQ(recent->mLeaders[0].mHead, ktAnnotationInterface::Leader::HeadArrow);
    EXPECT_EQ(recent->mLeaders[1].mPosition, Point(4, 5, 6));
    EXPECT_THAT(recent.mErrors, ElementsAre("invalid 'leaders' field content"));
}

TEST_F(VariantMap, RejectedMeasureLeadersKeepWhatWasValid) {
    ktAnnotationInterface::MeasureLeader measure;
    EXPECT_FALSE(measure.loadFromVariant(parse("{'A': [1, 2, 3], 'B': [1, 2], 'arrowdir': 'inout'}"), s6_22));
    EXPECT_EQ(measure.mPointA, Point(1, 2, 3));
    EXPECT_EQ(measure.mArrowDirection, ktAnnotationInterface::MeasureLeader::ArrowsInOut);
    EXPECT_EQ(measure.mOffsetVector, Point::UNIT_X);
    EXPECT_FALSE(measure.loadFromVariant(kt::ktVariant("x"), s6_22));
    EXPECT_TRUE(measure.loadFromVariant(parse("{'A': [1, 2, 3], 'B': [4, 5, 6], 'V': [7, 8, 9]}"), s6_17));
    EXPECT_EQ(measure.mOffsetVector, Point(7, 8, 9));
}

TEST_F(VariantMap, ChildrenAndMetadataComeWith6_22) {
    const std::string json = "{'children': [{'type': 'text', 'name': 'a', 'text': 'x'}], 'metadata': {'k': 2}}";
    LoadedRaster raster("{'metadata': {'k': 1}}");
    raster.load(json, s6_21);
    EXPECT_EQ(raster->getSubAnnotsCount(), 0U);
    EXPECT_EQ(raster->mMetadata.at("k").toInteger(), 1);
    raster.load(json);
    raster.load(json);
    EXPECT_EQ(raster->getSubAnnotsCount(), 2U) << "appended";
    EXPECT_EQ(raster->mMetadata.at("k").toInteger(), 2);
    raster.load("{'metadata': 5}");
    EXPECT_TRUE(raster->mMetadata.empty());
    EXPECT_THAT(raster.mErrors, IsEmpty());
}

TEST_F(VariantMap, OfTwoChildListsTheNewerNameWins) {
    const std::string a = "[{'type': 'raster', 'name': 'a'}]";
    const std::string b = "[{'type': 'raster', 'name': 'b'}]";
    EXPECT_EQ(LoadedRaster("{'childs': " + a + "}")->getSubAnnots().front().mAnnotation->GetName(), "a");
    EXPECT_EQ(
        LoadedRaster("{'childs': " + a + ", 'children': " + b + "}")->getSubAnnots().front().mAnnotation->GetName(),
        "b");
    LoadedRaster neither("{'childs': " + a + ", 'children': 5}");
    EXPECT_EQ(neither->getSubAnnotsCount(), 0U);
    EXPECT_THAT(neither.mErrors, IsEmpty());
}

TEST_F(VariantMap, AChildThatIsNoMapEndsTheAnnotationSilently) {
    LoadedRaster raster(
        "{'children': [{'type': 'raster', 'position': 1}, {'type': 'raster'}, 5, {'type': 'raster'}],"
        "'metadata': {'k': 1}, 'rastername': 'r'}");
    EXPECT_FALSE(raster.mIsUsable);
    EXPECT_THAT(raster.mErrors, ElementsAre("invalid 'position' field")) << "of the child that was dropped";
    EXPECT_EQ(raster->getSubAnnotsCount(), 1U);
    EXPECT_TRUE(raster->mMetadata.empty());
    EXPECT_EQ(raster->mRasterName, "");
}

TEST_F(VariantMap, NestingEndsAtLevel512) {
    for (const int depth : {512, 513, 2'000}) {
        std::string json = "{'type': 'raster'}";
        for (int level = 1; level < depth; ++level) {
            json = "{'type':'raster','children':[" + json + "]}";
        }
        for (int use = 0; use < 2; ++use) {
            LoadedRaster raster(json);
            EXPECT_TRUE(raster.mIsUsable);
            EXPECT_THAT(raster.mErrors, IsEmpty());
            int levels = 1;
            for (const ktAnnotationInterface* last = raster.mAnnotation; last->getSubAnnotsCount() != 0; ++levels) {
                last = last->getSubAnnots().front().mAnnotation;
            }
            EXPECT_EQ(levels, 512);
        }
    }
}

TEST_F(VariantMap, SizesAreChecked) {
    for (const auto& [size, message] :
         {std::pair("2", "invalid 'sizeem' field"), std::pair("[2]", "invalid 'sizeem' length"),
          std::pair("[1, 2, 3]", "invalid 'sizeem' length")}) {
        LoadedRaster raster(std::string("{'name': 'n', 'rastername': 'r', 'sizeem': ") + size + "}");
        EXPECT_FALSE(raster.mIsUsable);
        EXPECT_THAT(raster.mErrors, ElementsAre(message));
        EXPECT_EQ(raster->GetName(), "n");
        EXPECT_EQ(raster->mRasterName, "");
    }
}

TEST_F(VariantMap, SegmentsHaveTheirTypeAndOnlyTheirOwnProperties) {
    LoadedText text(
        "{'defaulttextprop': {'font': 'Mono', 'italic': true}, 'lines': [["
        "{'text': 'H', 'font': 'Mono', 'heightem': 1, 'bold': false, 'italic': true}, {'text': 2, 'type': 'sub'},"
        "{'text': 'O', 'type': 'SUP'}, {'type': 'sup'}, {'text': 'b', 'bold': 1, 'italic': 0},"
        "{'text': 'f', 'font': 8}, {'text': 'h', 'heightem': '2.5'}, {'text': 'n\\u0000l'}]]}");
    EXPECT_THAT(text.mErrors, IsEmpty());
    ASSERT_EQ(text->mLines.size(), 1U);
    const auto& line = text->mLines[0];
    ASSERT_EQ(line.size(), 8U);
    EXPECT_STREQ(line[1].getText(), "2");
    EXPECT_EQ(line[1].mType, Segment::Subscript);
    EXPECT_EQ(line[2].mType, Segment::Normal);
    EXPECT_EQ(line[3].mType, Segment::Superscript);
    EXPECT_EQ(line[3].mText, nullptr);
    for (const std::size_t plain : {0U, 1U, 2U, 3U, 7U}) {
        EXPECT_EQ(line[plain].mProperties, nullptr) << plain;
    }
    ASSERT_TRUE(line[4].mProperties != nullptr && line[5].mProperties != nullptr && line[6].mProperties != nullptr);
    EXPECT_EQ(line[4].mProperties->mStyle, ktAnnotationText::TextProperties::sStyleBold);
    EXPECT_EQ(line[4].mProperties->mFontName, "Mono");
    EXPECT_EQ(line[5].mProperties->mFontName, "8");
    EXPECT_EQ(line[6].mProperties->mHeight, 250);
    EXPECT_EQ(line[7].mLength, 3) << "a loaded text is not cut at a NUL";
}

TEST_F(VariantMap, HeightsThatDoNotSurviveTheirConversionBecomeOwnOnes) {
    LoadedText text("{'lines': []}");
    text->mDefaultTextProperties = {"Arial", 1.0F};
    text->mDefaultTextProperties.mHeight = 53;
    text->mDefaultTextProperties.mReserved = 7;
    text.load("{'lines': [[{'text': 'x'}]]}");
    ASSERT_NE(text->mLines.at(0).at(0).mProperties, nullptr);
    EXPECT_EQ(text->mLines[0][0].mProperties->mHeight, 52);
    EXPECT_EQ(text->mLines[0][0].mProperties->mReserved, 7);
    text.load("{'defaulttextprop': {}, 'lines': [[{'text': 'y'}]]}");
    EXPECT_EQ(text->mDefaultTextProperties.mHeight, 52);
    EXPECT_EQ(text->mLines.size(), 2U) << "lines are appended";
}

TEST_F(VariantMap, PlainTextIsUsedWithoutLines) {
    struct Case {
        const char* mJson;
        std::string mPlain;
        std::size_t mLineCount;
    };
    for (const Case& c : {Case{"{'text': 'a\\nb'}", "a\nb", 2}, Case{"{}", "", 1},
                          Case{"{'lines': 5, 'text': 6}", "6", 1}, Case{"{'lines': [], 'text': 'a'}", "", 0}}) {
        LoadedText text(c.mJson);
        std::string plain;
        text->toString(plain);
        EXPECT_EQ(plain, c.mPlain) << c.mJson;
        EXPECT_EQ(text->mLines.size(), c.mLineCount);
    }
}

TEST_F(VariantMap, ViewsTellTheirProblemsInOrder) {
    struct Case {
        const char* mJson;
        int mAnnotationCount;  ///< -1: no view
        Messages mErrors;
    };
    const Case cases[] = {
        {"{'ver': '6.16'}", -1, {"invalid version 6.16"}},
        {"{'ver': 6.22}", -1, {"missing 'annotations' field"}},
        {"{}", -1, {"invalid version "}},
        {"{'ver': '6.22', 'annotations': {}}", -1, {"invalid 'annotations' field"}},
        {"{'ver': '6.20', 'textannotations': []}", -1, {"missing 'rasterannotations' field"}},
        {"{'ver': '6.20', 'rasterannotations': []}", -1, {"missing 'textannotations' field"}},
        {"{'ver': '6.17', 'textannotations': 1}", -1, {"invalid 'textannotations' field"}},
        {"{'ver': '6.21', 'textannotations': [{}, 1], 'rasterannotations': 2}",
         -1,
         {"invalid 'annotations' field content", "invalid 'rasterannotations' field"}},
        {"{'ver': '6.21', 'textannotations': [{}, 1], 'rasterannotations': [{}, 2]}",
         2,
         {"invalid 'annotations' field content", "invalid 'rasterannotations' field content"}},
        {"{'ver': '6.26', 'metadata': 5, 'annotations': [{'type': 'Text'}, {}, 1, {'type': 'text'}, {'type': "
         "'raster'}]}",
         2,
         {"invalid annotation type", "invalid annotation type", "invalid 'annotations' field content"}},
        {"{'ver': '6.27', 'axis': 1, 'normal': [1], 'origin': [], 'annotations': [{'type': 'text', 'position': 1}]}",
         0,
         {"invalid 'origin' field", "invalid 'normal' field", "invalid 'axis' field", "invalid 'metadata' field",
          "invalid 'position' field"}},
    };
    for (const Case& c : cases) {
        Messages errors;
        const ktPointer<ktAnnotationView> view = ktAnnotationView::FromVariantMap(parse(c.mJson), errors);
        ASSERT_EQ(view != nullptr, c.mAnnotationCount >= 0) << c.mJson;
        if (view != nullptr) {
            EXPECT_EQ(view->mAnnotations.size(), static_cast<std::size_t>(c.mAnnotationCount)) << c.mJson;
        }
        EXPECT_EQ(errors, c.mErrors) << c.mJson;
    }
}

TEST_F(VariantMap, ViewsHoldPlaneAndMetadata) {
    Messages errors;
    const auto view = ktAnnotationView::FromVariantMap(
        parse("{'ver': '6.27', 'name': 'plan', 'origin': ['1', 2, true], 'normal': [0, 1, 0], 'axis': [0, 0, 1],"
              "'metadata': {'k': 'v'}, 'annotations': [{'type': 'raster', 'name': 'r'}]}"),
        errors);
    ASSERT_NE(view, nullptr);
    EXPECT_THAT(errors, IsEmpty());
    EXPECT_EQ(view->GetName(), "plan");
    EXPECT_EQ(view->mOrigin, Point(1, 2, 1)) << "elements of any kind";
    EXPECT_EQ(view->mNormal, Point(0, 1, 0));
    EXPECT_EQ(view->mAxis, Point(0, 0, 1));
    EXPECT_EQ(view->mMetadata.at("k").toString(), "v");
    EXPECT_EQ(view->mAnnotations.at(0)->GetName(), "r");
}

}  // namespace
}  // namespace ktLegacy
