#include "document/ktLegacyDocument.h"
#include "document/ktViewDrawing.h"
#include "tests/legacy/LegacyLibraryTest.h"
#include "tests/support/RecordingLog.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ktLegacy {
namespace {

class FindingTest : public ktTest::LegacyLibraryTest {};

/// "KT1217 view 1 'V', annotation 0 'A': invalid 'color' field".
std::string show(const ktLegacyFinding& finding) {
    const std::string place = finding.describePlace();
    return getFindingCodeText(finding.mCode) + " " + place + (place.empty() ? "" : ": ") + finding.mWhat +
           (finding.mRemedy.empty() ? "" : " [" + finding.mRemedy + "]");
}

std::vector<std::string> showAll(const std::vector<ktLegacyFinding>& findings) {
    std::vector<std::string> shown;
    std::transform(findings.begin(), findings.end(), std::back_inserter(shown), show);
    return shown;
}

ktLegacyDocument readJson(std::string_view json) { return ktLegacyDocument::read(std::as_bytes(std::span(json))); }

TEST_F(FindingTest, OfVariantDocumentsNameViewAnnotationAndNestedEntry) {
    const ktLegacyDocument document = readJson(R"([
        {"annotations": [], "name": "ok", "ver": "6.22"},
        {"name": "MBD_A", "annotations": [
            {"type": "text", "name": "kept"},
            {"type": "video", "name": "lost"},
            {"type": "text", "name": "Note \ud83d\ude00", "color": "red", "children": [
                {"type": "text", "name": "a"},
                {"type": "text", "name": "b", "children": [{"type": "text", "name": "c", "leaders": [1]}, {"type": 5}]},
                {"type": "raster", "name": "d", "children": [null]}]}],
         "ver": "6.22"},
        {"rasterannotations": [1], "textannotations": [{"name": "t"}, {"name": "u", "position": 1}], "ver": "6.20"},
        {"ver": "6.1\u00e9"}])");
    EXPECT_THAT(
        showAll(document.getFindings()),
        testing::ElementsAre(
            "KT1214 view 2 'MBD_A', annotation 1: invalid annotation type",
            "KT1217 view 2 'MBD_A', annotation 1 'Note 😀': invalid 'color' field",
            "KT1220 view 2 'MBD_A', annotation 1 'c', nested 1/0: invalid 'leaders' field content",
            "KT1214 view 2 'MBD_A', annotation 1 'b', nested 1/1: invalid annotation type",
            "KT1232 view 2 'MBD_A', annotation 1 'd', nested 2/0: an entry of a list of nested annotations is no map; "
            "the annotation that holds it is left out",
            "KT1230 view 2 'MBD_A': 1 of 3 annotations of view 'MBD_A' could not be read",
            "KT1231 view 2 'MBD_A': 2 of 5 nested annotations of view 'MBD_A' could not be read",
            "KT1218 view 3, annotation 1 'u': invalid 'position' field",
            "KT1213 view 3, annotation 1: invalid 'rasterannotations' field content",
            "KT1230 view 3: 2 of 3 annotations of view '' could not be read", "KT1201 view 4: invalid version 6.1é"));
}

TEST_F(FindingTest, OfDrawingsNameTheCauseAndWhatLetsItPass) {
    const ktTest::RecordingLog failuresAreExpected;
    constexpr std::string_view json = R"({"ver": "6.27", "name": "V", "metadata": {}, "annotations": [
        {"type": "text", "name": "ok", "text": "x"},
        {"type": "text", "name": "N", "text": "x", "children": [
            {"type": "text", "text": "y"}, {"type": "text", "name": "M", "text": "y", "metadata": {"NOA": 1}}]},
        {"type": "raster", "name": "P", "rastername": "p.png"}]})";
    const struct {
        int mAccepted;
        bool mIsDrawn;
        std::vector<std::string> mFindings;
    } cases[] = {
        {0,
         false,
         {"KT2103 annotation 1 'N', nested 1: Found CT metadata NOAin annotation: Fail to migrate sub annotation of "
          "'N': Fail to migrate annotation 'N' of view 'V' [--accept known-metadata]"}},
        {ktViewDrawing::AcceptKnownMetadata,
         false,
         {"KT2006 annotation 2 'P': No raster callback: Fail to migrate annotation 'P' of view 'V' "
          "[--accept missing-pictures]"}},
        {ktViewDrawing::AcceptKnownMetadata | ktViewDrawing::AcceptMissingPictures,
         true,
         {"KT3021 annotation 2 'P': a crossed box is drawn in the place of a picture: No raster callback"}},
        {ktViewDrawing::AcceptFailedAnnotations,
         true,
         {"KT3020 annotation 1 'N', nested 1: the drawing leaves this annotation out: Found CT metadata NOAin "
          "annotation: Fail to migrate sub annotation of 'N': Fail to migrate annotation 'N' of view 'V'",
          "KT3020 annotation 2 'P': the drawing leaves this annotation out: No raster callback: Fail to migrate "
          "annotation 'P' of view 'V'"}},
    };
    const ktLegacyDocument document = readJson(json);
    for (const auto& [accepted, isDrawn, findings] : cases) {
        ktViewDrawing::Options options;
        options.mAccepted = accepted;
        ktViewDrawing drawing(options);
        EXPECT_EQ(drawing.draw(*document.getViews().front().mView), isDrawn);
        EXPECT_EQ(showAll(drawing.getFindings()), findings);
        EXPECT_EQ(drawing.getSvg().find(">ok</title>") != std::string::npos, isDrawn);
        EXPECT_EQ(drawing.getReason().empty(), isDrawn);
    }
}

TEST_F(FindingTest, NestingLimitHasItsPlace) {
    std::string json = R"({"ver": "6.22", "annotations": [)";
    for (int level = 1; level <= 513; ++level) {
        json += R"({"type": "text", "children": [)";
    }
    for (int level = 1; level <= 513; ++level) {
        json += "]}";
    }
    const ktLegacyDocument document = readJson(json + "]}");
    ASSERT_EQ(document.getFindings().size(), 2U);
    EXPECT_EQ(document.getFindings()[0].mCode, ktFindingCode::VariantNestedTooDeep);
    EXPECT_EQ(document.getFindings()[0].mChild.size(), 512U);
    EXPECT_EQ(document.getOutcome(), ktOutcome::LimitReached);
}

std::string makeDocumentation() {
    std::string text =
        "# Findings\n\n"
        "Everything that can be wrong with a document, lost or changed on its way to a drawing. The same codes stand "
        "in "
        "the\nlibrary (`legacy/ktFindingCode.h`), in the JSON of the tool, in its reports and in the Python module. "
        "Codes "
        "are never\nused again and never change. This page is made from the library's own list: the test "
        "`FindingTest.DocumentationIsThatOfTheList`\nfails when it differs, and leaves the right page in the folder of "
        "the build as `findings.md`.\n\n"
        "| code | severity | sentence | when | what to do |\n|---|---|---|---|---|\n";
    static constexpr const char* sSeverities[] = {"note", "warning", "error"};
    for (const ktFindingKind& kind : getFindingKinds()) {
        text += "| " + getFindingCodeText(kind.mCode) + " " + kind.mName + " | " +
                sSeverities[static_cast<std::size_t>(kind.mSeverity)] + " | " + kind.mSentence + " | " + kind.mWhen +
                " | " + kind.mWhatToDo + " |\n";
    }
    return text;
}

TEST_F(FindingTest, DocumentationIsThatOfTheList) {
    std::ifstream file(KT_SOURCE_DIR "/docs/findings.md", std::ios::binary);
    const std::string page{std::istreambuf_iterator<char>(file), {}};
    const std::string wanted = makeDocumentation();
    if (page != wanted) {
        std::ofstream("findings.md", std::ios::binary) << wanted;
    }
    EXPECT_EQ(page, wanted);
}

}  // namespace
}  // namespace ktLegacy
