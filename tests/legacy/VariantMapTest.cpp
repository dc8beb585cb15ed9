#include "platform/system/json/ktVariantJson.h"
#include "platform/system/variant/ktVariantMapImpl.h"
#include "tests/legacy/LegacyLibraryTest.h"

#include <fstream>
#include <span>
#include <vector>

namespace ktLegacy {
namespace {

using ktTest::show;

class VariantMap : public ktTest::LegacyLibraryTest {};

/// The map of a JSON object.
kt::ktVariant::ktVariantMapImpl parse(const std::string& json) {
    kt::ktVariant value;
    kt::ktJsonError error;
    EXPECT_TRUE(kt::ktJsonReader().parse(std::as_bytes(std::span(json)), value, error)) << json << error.mMessage;
    return value.toMap();
}

/// Reads the documents of a case, "version JSON" each, and tells what they make.
std::string readCase(const std::string& kind, const std::vector<std::string>& documents) {
    std::vector<std::string> errors;
    std::string text;
    if (kind == "view") {
        text = show(ktAnnotationView::FromVariantMap(parse(documents.at(0)), errors));
    } else {
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
        text = (isUsable ? "" : "refused ") + show(annotation);
    }
    for (const std::string& message : errors) {
        text += "; " + message;
    }
    return text;
}

/// The text with another one in the place of the $.
std::string replace(std::string text, const std::string& meaning) {
    const std::size_t at = text.find('$');
    return at == std::string::npos ? text : text.replace(at, 1, meaning);
}

TEST_F(VariantMap, IsReadAsTheCasesSay) {
    std::ifstream file(KT_SOURCE_DIR "/tests/data/legacy/variant_maps.txt");
    std::string name, result;
    std::vector<std::string> documents;
    int count = 0;
    for (std::string line; std::getline(file, line);) {
        const std::size_t arrow = line.find(" -> ");
        if (line.starts_with("== ")) {
            name = line.substr(3);
            documents.clear();
        } else if (line.starts_with("= ") || (!name.empty() && arrow != std::string::npos)) {
            const bool isRow = !line.starts_with("= ");
            result = isRow ? result : line.substr(2);
            std::vector<std::string> read = documents;
            for (std::string& document : read) {
                document = replace(document, line.substr(0, arrow));
            }
            if (isRow || result.find('$') == std::string::npos) {
                const std::string expected = isRow ? replace(result, line.substr(arrow + 4)) : result;
                EXPECT_EQ(readCase(name.substr(0, name.find(':')), read), expected) << name << ' ' << line;
                ++count;
            }
        } else if (!line.empty() && !name.empty()) {
            documents.push_back(line);
        }
    }
    EXPECT_GT(count, 110);
}

TEST_F(VariantMap, RejectedMeasureLeadersKeepWhatWasValid) {
    ktAnnotationInterface::MeasureLeader measure;
    EXPECT_FALSE(measure.loadFromVariant(parse(R"({"A": [1, 2, 3], "B": [1, 2], "arrowdir": "inout"})"), {6, 22}));
    EXPECT_EQ(measure.mPointA, Point(1, 2, 3));
    EXPECT_EQ(measure.mArrowDirection, ktAnnotationInterface::MeasureLeader::ArrowsInOut);
    EXPECT_EQ(measure.mOffsetVector, Point::UNIT_X);
}

}  // namespace
}  // namespace ktLegacy
