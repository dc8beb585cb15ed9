#include "platform/system/ktVariantJson.h"
#include "platform/system/ktVariantMapImpl.h"
#include "tests/legacy/LegacyLibraryTest.h"

#include <span>
#include <vector>

namespace ktLegacy {
namespace {

using ktTest::show;
using Messages = std::vector<std::string>;

constexpr kt::ktStreamVersion s6_16{6, 16};
constexpr kt::ktStreamVersion s6_17{6, 17};
constexpr kt::ktStreamVersion s6_21{6, 21};
constexpr kt::ktStreamVersion s6_22{6, 22};

class VariantMap : public ktTest::LegacyLibraryTest {};

/// The map of a JSON object; quotes may be written as apostrophes.
kt::ktVariant::ktVariantMapImpl parse(std::string json) {
    std::replace(json.begin(), json.end(), '\'', '"');
    kt::ktVariant value;
    kt::ktJsonError error;
    EXPECT_TRUE(kt::ktJsonReader().parse(std::as_bytes(std::span(json)), value, error)) << json << error.mMessage;
    return value.toMap();
}

/// Text after text, each after "; ".
std::string join(std::string text, const Messages& messages) {
    for (const std::string& message : messages) {
        text += "; " + message;
    }
    return text;
}

/// Reads a JSON object into an annotation; tells the annotation, whether it was refused and all messages.
std::string readInto(ktAnnotationInterface& annotation, const std::string& json, kt::ktStreamVersion version = s6_22) {
    Messages errors;
    const bool isUsable = annotation.loadFromVariant(parse(json), version, errors);
    return join((isUsable ? "" : "refused ") + show(annotation), errors);
}
template <typename Annotation>
std::string read(const std::string& json, kt::ktStreamVersion version) {
    const ktPointer<Annotation> annotation(new Annotation);
    return readInto(*annotation, json, version);
}
std::string readRaster(const std::string& json, kt::ktStreamVersion version = s6_22) {
    return read<ktAnnotationRaster>(json, version);
}
std::string readText(const std::string& json, kt::ktStreamVersion version = s6_22) {
    return read<ktAnnotationText>(json, version);
}

struct Row {
    std::string mJson;
    std::string mResult;
};

TEST_F(VariantMap, BaseKeysAreReadAndReportedInOrder) {
    EXPECT_EQ(readText("{'name': 'new'}", s6_16), "refused text; invalid version for annotation interface");
    EXPECT_EQ(readText("{'name': 'new', 'lines': []}", s6_17), "text 'new'");
    const std::string lost = "{'name': 'n', 'color': '010203', 'leaders': 5, 'frameshape': 'circle', 'position': ";
    const std::string noPosition = "refused raster 'n' rgb(1 2 3); invalid 'position' field";
    const std::string size = "{'name': 'n', 'rastername': 'r', 'sizeem': ";
    for (const auto& [json, result] : std::vector<Row>{
             {"{'name': 5.5, 'color': 'Ff8000', 'position': [1, 2.5, -3], 'isframelocked': true, 'isignoreztest': '1',"
              "'isscalelocked': 0, 'frameshape': 'oblongright', 'metadata': {'k': 1}, 'Name': 'another key',"
              "'rastername': 7, 'sizeem': ['2', true]}",
              "raster '5.5' at(1 2.5 -3) rgb(255 128 0) flagsae k=1 image'7'2x1"},
             {"{'isscalelocked': true, 'frameshape': 'noframe'}", "raster flags40"},
             {lost + "[1, 2]}", noPosition},
             {lost + "[1, 2, 3, 4]}", noPosition},
             {lost + "[1, 2, '3']}", noPosition},
             {lost + "[1, 2, true]}", noPosition},
             {lost + "'x'}", noPosition},
             {lost + "null}", noPosition},
             {lost + "{}}", noPosition},
             {size + "2}", "refused raster 'n'; invalid 'sizeem' field"},
             {size + "[2]}", "refused raster 'n'; invalid 'sizeem' length"},
             {size + "[1, 2, 3]}", "refused raster 'n'; invalid 'sizeem' length"}}) {
        EXPECT_EQ(readRaster(json), result) << json;
    }
    EXPECT_EQ(readText("{'childs': [{'type': 'Text'}], 'color': 'x', 'defaulttextprop': 1, 'leaders': 1, 'text': 'z',"
                       "'measures': [1], 'lines': ['x', [1, {'text': 'y'}], 2, []]}"),
              "text |y |; invalid 'color' field; invalid 'leaders' field; invalid 'measures' field content; invalid "
              "annotation type; invalid 'defaulttextprop' field; invalid line; invalid segment; invalid line");
}

TEST_F(VariantMap, AbsentKeysMeanTheirDefaults) {
    ktAnnotationRaster raster;
    readInto(raster,
             "{'name': 'n', 'color': '010203', 'position': [1, 2, 3], 'leaders': [{}], 'measures': [],"
             "'metadata': {'k': 1}, 'rastername': 'r', 'sizeem': [2, 3]}");
    raster.setFlags(0xFF);
    EXPECT_EQ(readInto(raster, "{}"), "raster at(1 2 3) rgb(1 2 3) image''2x3");
}

TEST_F(VariantMap, ColoursAreParsedLeniently) {
    const std::string kept = "raster rgb(9 9 9)";
    const std::string refused = kept + "; invalid 'color' field";
    const std::vector<Row> rows = {
        {"'FF8000'", "raster rgb(255 128 0)"},
        {"'000000'", "raster rgb(0 0 0)"},
        {"'00000g'", refused},
        {"'12abzz'", "raster rgb(0 18 171)"},
        {"''", kept},
        {"'fff'", refused},
        {"'fffffff'", refused},
        {"' \\t12AB'", "raster rgb(0 18 171)"},
        {"'0x12ab'", "raster rgb(0 18 171)"},
        {"'0X12aB'", "raster rgb(0 18 171)"},
        {"'0xg000'", refused},
        {"'-00001'", "raster"},
        {"'+0000f'", "raster rgb(0 0 15)"},
        {"'- 0001'", refused},
        {"'1\\u0000abcd'", "raster rgb(0 0 1)"},
        {"'      '", refused},
        {"123456", "raster rgb(18 52 86)"},
        {"null", kept},
        {"[]", kept},
        {"true", refused},
    };
    for (const auto& [json, result] : rows) {
        ktAnnotationRaster raster;
        raster.mColor = {9, 9, 9};
        EXPECT_EQ(readInto(raster, "{'color': " + json + "}"), result) << json;
    }
}

TEST_F(VariantMap, WordsAreComparedExactly) {
    const std::string arrow = "{'measures': [{'A': [0, 0, 0], 'B': [0, 0, 0], 'V': [0, 0, 0], 'arrowdir': ";
    const std::string measure = "raster measure(0 0 0)(0 0 0)(0 0 0)";
    const struct {
        std::string mStart, mEnd, mShown, mShownEnd, mWords;
        kt::ktStreamVersion mVersion = s6_22;
    } vocabularies[] = {
        {"{'frameshape': ", "}", "raster flags", "",
         "'noframe' 0 'square' 2 'diamond' 3 'triangle' 4 'flagright' 5 'flagleft' 6 'flagboth' 7 'parallelogram' 8 "
         "'hexagon' 9 'pentagon' a 'circle' b 'oblong' c 'oblongleft' d 'oblongright' e"},
        {"{'isscalelocked': 1, 'frameshape': ", "}", "raster flags", "", "'rectangle' 41 'Circle' 41 '' 41 5 41"},
        {"{'leaders': [{'head': ", "}]}", "raster leader(0 0 0)", "",
         "'none' 0 'square' 1 'circle' 2 'arrow' 3 'plus' 4 'cross' 5 'triangle' 6"},
        {arrow, "}]}", measure, "", "'unspecified' 0 'outout' 1 'inout' 2 'outin' 3"},
        {arrow, "}]}", measure, "", "'outout' 0 'inout' 0 'outin' 0", s6_21},
        {"{'children': [{'type': 'raster', 'anchorloc': ", "}]}", "raster [", ":raster]",
         "'rt' 12 'rc' 11 'rb' 12 'lt' 9 'lc' 8 'lb' 7 'tr' 6 'tc' 5 'tl' 4 'br' 3 'bc' 2 'bl' 1 'RB' 0 '' 0 'none' 0"},
    };
    for (const auto& vocabulary : vocabularies) {
        std::istringstream words(vocabulary.mWords);
        for (std::string word, code; words >> word >> code;) {
            EXPECT_EQ(readRaster(vocabulary.mStart + word + vocabulary.mEnd, vocabulary.mVersion),
                      vocabulary.mShown + code + vocabulary.mShownEnd)
                << word;
        }
    }
}

TEST_F(VariantMap, LeadersFollowTheVersion) {
    const std::string content = "; invalid 'leaders' field content";
    EXPECT_EQ(readRaster("{'leaders': [[1, 2, 3], 'x', [1, 2], {'pos': [1, 2, 3]}]}", s6_21),
              "raster leader(1 2 3)0" + content + content + content);
    EXPECT_EQ(readRaster("{'leaders': [{'pos': [1, 2], 'head': 'arrow'}, [1, 2, 3], {'pos': [4, 5, 6]}]}"),
              "raster leader(0 0 0)3 leader(4 5 6)0" + content);

    // A rejected measure leader keeps what was valid.
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
    ktAnnotationRaster raster;
    readInto(raster, "{'metadata': {'k': 1}}");
    EXPECT_EQ(readInto(raster, json, s6_21), "raster k=1");
    readInto(raster, json);
    EXPECT_EQ(readInto(raster, json), "raster k=2 [0:text 'a' |x] [0:text 'a' |x]") << "appended";
    EXPECT_EQ(readInto(raster, "{'metadata': 5}"), "raster [0:text 'a' |x] [0:text 'a' |x]");

    // Of two lists the newer name wins; a child that is no map ends the annotation silently.
    const std::string old = "{'childs': [{'type': 'raster', 'name': 'a'}]";
    for (const auto& [rest, result] : std::vector<Row>{
             {"}", "raster [0:raster 'a']"},
             {", 'children': [{'type': 'raster', 'name': 'b'}]}", "raster [0:raster 'b']"},
             {", 'children': 5}", "raster"},
             {", 'children': [{'type': 'raster', 'position': 1}, {'type': 'raster'}, 5, {'type': 'raster'}],"
              "'metadata': {'k': 1}, 'rastername': 'r'}",
              "refused raster [0:raster]; invalid 'position' field"}}) {
        EXPECT_EQ(readRaster(old + rest), result) << rest;
    }
}

TEST_F(VariantMap, NestingEndsAtLevel512) {
    for (const int depth : {512, 513, 2'000, 513}) {
        std::string json = "{'type': 'raster'}";
        for (int level = 1; level < depth; ++level) {
            json = "{'type':'raster','children':[" + json + "]}";
        }
        const std::string result = readRaster(json);
        EXPECT_EQ(std::count(result.begin(), result.end(), '['), 511);
        EXPECT_THAT(result, testing::EndsWith("[0:raster" + std::string(511, ']'))) << "no message";
    }
}

TEST_F(VariantMap, SegmentsHaveTheirTypeAndOnlyTheirOwnProperties) {
    EXPECT_EQ(readText("{'defaulttextprop': {'font': 'Mono', 'italic': true}, 'lines': [["
                       "{'text': 'H', 'font': 'Mono', 'heightem': 1, 'bold': false, 'italic': true},"
                       "{'text': 2, 'type': 'sub'}, {'text': 'O', 'type': 'SUP'}, {'type': 'sup'},"
                       "{'text': 'b', 'bold': 1, 'italic': 0}, {'text': 'f', 'font': 8},"
                       "{'text': 'h', 'heightem': '2.5'}, {'text': 'n\\u0000l'}]]}"),
              "text Mono/100/2/0 |H+2^1+O+~^2+b{Mono/100/1/0}+f{8/100/2/0}+h{Mono/250/2/0}+n@l")
        << "a loaded text is not cut at a NUL";
}

TEST_F(VariantMap, HeightsThatDoNotSurviveTheirConversionBecomeOwnOnes) {
    ktAnnotationText text;
    text.mDefaultTextProperties.mHeight = 53;
    text.mDefaultTextProperties.mReserved = 7;
    EXPECT_EQ(readInto(text, "{'lines': [[{'text': 'x'}]]}"), "text Arial/53/0/7 |x{Arial/52/0/7}");
    EXPECT_EQ(readInto(text, "{'defaulttextprop': {}, 'lines': [[{'text': 'y'}]]}"),
              "text Arial/52/0/7 |x{Arial/52/0/7} |y")
        << "lines are appended";
}

TEST_F(VariantMap, PlainTextIsUsedWithoutLines) {
    for (const auto& [json, result] : std::vector<Row>{{"{'text': 'a\\nb'}", "text |a |b"},
                                                       {"{}", "text |~"},
                                                       {"{'lines': 5, 'text': 6}", "text |6"},
                                                       {"{'lines': [], 'text': 'a'}", "text"}}) {
        EXPECT_EQ(readText(json), result) << json;
    }
}

TEST_F(VariantMap, ViewsTellTheirProblemsInOrder) {
    const std::string plane = "view '' (0 0 0)(0 0 1)(1 0 0)";
    for (const auto& [json, result] : std::vector<Row>{
             {"{'ver': '6.16'}", "no view; invalid version 6.16"},
             {"{'ver': 6.22}", "no view; missing 'annotations' field"},
             {"{}", "no view; invalid version "},
             {"{'ver': '6.22', 'annotations': {}}", "no view; invalid 'annotations' field"},
             {"{'ver': '6.20', 'textannotations': []}", "no view; missing 'rasterannotations' field"},
             {"{'ver': '6.20', 'rasterannotations': []}", "no view; missing 'textannotations' field"},
             {"{'ver': '6.17', 'textannotations': 1}", "no view; invalid 'textannotations' field"},
             {"{'ver': '6.21', 'textannotations': [{}, 1], 'rasterannotations': 2}",
              "no view; invalid 'annotations' field content; invalid 'rasterannotations' field"},
             {"{'ver': '6.21', 'textannotations': [{}, 1], 'rasterannotations': [{}, 2]}",
              plane +
                  " text |~ raster; invalid 'annotations' field content; invalid 'rasterannotations' field content"},
             {"{'ver': '6.26', 'metadata': 5, 'annotations': [{'type': 'Text'}, {}, 1, {'type': 'text'}, {'type': "
              "'raster'}]}",
              plane + " text |~ raster; invalid annotation type; invalid annotation type; invalid 'annotations' field "
                      "content"},
             {"{'ver': '6.27', 'axis': 1, 'normal': [1], 'origin': [], 'annotations': [{'type': 'text', 'position': "
              "1}]}",
              plane + "; invalid 'origin' field; invalid 'normal' field; invalid 'axis' field; invalid 'metadata' "
                      "field; invalid 'position' field"},
             {"{'ver': '6.27', 'name': 'plan', 'origin': ['1', 2, true], 'normal': [0, 1, 0], 'axis': [0, 0, 1],"
              "'metadata': {'k': 'v'}, 'annotations': [{'type': 'raster', 'name': 'r'}]}",
              "view 'plan' (1 2 1)(0 1 0)(0 0 1) k=v raster 'r'"}}) {
        Messages errors;
        const ViewPointer view = ktAnnotationView::FromVariantMap(parse(json), errors);
        EXPECT_EQ(join(show(view), errors), result) << json;
    }
}

}  // namespace
}  // namespace ktLegacy
