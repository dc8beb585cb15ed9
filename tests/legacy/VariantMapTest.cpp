#include "platform/system/ktVariantJson.h"
#include "platform/system/ktVariantMapImpl.h"
#include "tests/legacy/LegacyLibraryTest.h"

#include <fstream>
#include <span>
#include <vector>

namespace ktLegacy {
namespace {

using ktTest::show;
using Messages = std::vector<std::string>;

constexpr kt::ktStreamVersion s6_21{6, 21};
constexpr kt::ktStreamVersion s6_22{6, 22};

class VariantMap : public ktTest::LegacyLibraryTest {};

/// The map of a JSON object.
kt::ktVariant::ktVariantMapImpl parse(const std::string& json) {
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
std::string readInto(ktAnnotationInterface& annotation, std::string json, kt::ktStreamVersion version = s6_22) {
    std::replace(json.begin(), json.end(), '\'', '"');
    Messages errors;
    const bool isUsable = annotation.loadFromVariant(parse(json), version, errors);
    return join((isUsable ? "" : "refused ") + show(annotation), errors);
}

/// Reads the documents of a case, "version JSON" each, and tells what they make.
std::string readCase(const std::string& kind, const std::vector<std::string>& documents) {
    Messages errors;
    if (kind == "view") {
        const ViewPointer view = ktAnnotationView::FromVariantMap(parse(documents.at(0)), errors);
        return join(show(view), errors);
    }
    AnnotationPointer annotation(new ktAnnotationRaster);
    if (kind == "text") {
        annotation = new ktAnnotationText;
    }
    bool isUsable = true;
    for (const std::string& document : documents) {
        const std::size_t blank = document.find(' ');
        const kt::ktStreamVersion version(document.substr(0, blank));
        isUsable = annotation->loadFromVariant(parse(document.substr(blank)), version, errors);
    }
    return join((isUsable ? "" : "refused ") + show(annotation), errors);
}

TEST_F(VariantMap, IsReadAsTheCasesSay) {
    std::ifstream file(KT_SOURCE_DIR "/tests/data/legacy/variant_maps.txt");
    std::string name;
    std::vector<std::string> documents;
    int count = 0;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("== ")) {
            name = line.substr(3);
            documents.clear();
        } else if (line.starts_with("= ")) {
            EXPECT_EQ(readCase(name.substr(0, name.find(':')), documents), line.substr(2)) << name;
            ++count;
        } else if (!line.empty() && !name.empty()) {
            documents.push_back(line);
        }
    }
    EXPECT_GT(count, 40);
}

TEST_F(VariantMap, ColoursAreParsedLeniently) {
    const std::string kept = "raster rgb(9 9 9)";
    const std::string refused = kept + "; invalid 'color' field";
    const std::pair<std::string, std::string> rows[] = {
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
            EXPECT_EQ(readInto(*ktPointer<ktAnnotationRaster>(new ktAnnotationRaster),
                               vocabulary.mStart + word + vocabulary.mEnd, vocabulary.mVersion),
                      vocabulary.mShown + code + vocabulary.mShownEnd)
                << word;
        }
    }
}

TEST_F(VariantMap, RejectedMeasureLeadersKeepWhatWasValid) {
    ktAnnotationInterface::MeasureLeader measure;
    EXPECT_FALSE(measure.loadFromVariant(parse(R"({"A": [1, 2, 3], "B": [1, 2], "arrowdir": "inout"})"), s6_22));
    EXPECT_EQ(measure.mPointA, Point(1, 2, 3));
    EXPECT_EQ(measure.mArrowDirection, ktAnnotationInterface::MeasureLeader::ArrowsInOut);
    EXPECT_EQ(measure.mOffsetVector, Point::UNIT_X);
    EXPECT_FALSE(measure.loadFromVariant(kt::ktVariant("x"), s6_22));
    EXPECT_TRUE(measure.loadFromVariant(parse(R"({"A": [1, 2, 3], "B": [4, 5, 6], "V": [7, 8, 9]})"), {6, 17}));
    EXPECT_EQ(measure.mOffsetVector, Point(7, 8, 9));
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

}  // namespace
}  // namespace ktLegacy
