#include "tests/render/RenderCompare.h"
#include "tests/tool/TemporaryFolder.h"

#include <cstdlib>

namespace ktannot::test {
namespace {

struct PictureCase {
    const char* mName;  ///< of the reference picture
    const char* mDocument;
    const char* mDrawing;
    const char* mTextMode;
    double mTolerance;
};

void PrintTo(const PictureCase& picture, std::ostream* stream) { *stream << picture.mName; }

class MigratedPicture : public testing::TestWithParam<PictureCase> {};

TEST_P(MigratedPicture, IsWhatTwoRenderersDraw) {
    const auto& [name, document, drawing, textMode, tolerance] = GetParam();
    const TemporaryFolder folder;
    const std::string command = "'" KT_TOOL "' migrate '" KT_SAMPLES_DIR "/" + std::string(document) + "' -q -o '" +
                                folder.getPath() + "' --accept all --text " + textMode + " 2>/dev/null";
    EXPECT_NE(std::system(command.c_str()), -1);
    const std::string svg = readFile(folder.at(std::string(document) + "/" + drawing));
    ASSERT_FALSE(svg.empty());
    kt::test::expectReference(svg, name, tolerance);
}

// Renderers resample pictures in their own ways.
constexpr PictureCase sPictures[] = {
    {"frames", "catalogue_v622.json", "001-frame shapes.svg", "text", 0.11},
    {"heads", "catalogue_from_622_v622.kts", "002-leader heads.svg", "text", 0.11},
    {"measures", "catalogue_v622.json", "003-measures.svg", "text", 0.11},
    {"anchors", "catalogue_from_622_v622.kts", "004-anchors.svg", "text", 0.11},
    {"callout", "ctc_01_v627.json", "003-MBD_0 (3).svg", "outlines", 0.11},
    {"symbols", "symbols_v626.json", "001-drawing symbols.svg", "text", 0.2},
    {"arabic", "lang_ar.json", "001-\u062f\u0642\u064a\u0642\u0629 \u0642\u0648\u0633\u064a\u0629.svg", "outlines",
     0.11},
};

INSTANTIATE_TEST_SUITE_P(Samples, MigratedPicture, testing::ValuesIn(sPictures),
                         [](const auto& test) { return test.param.mName; });

#ifdef KT_HAS_RENDER_MODULE
/// Pages of PDF files and PNG pictures look like the drawings.
TEST(MigratedPages, AreWhatTheDrawingIs) {
    const TemporaryFolder folder;
    const std::string command = "'" KT_TOOL "' migrate '" KT_SAMPLES_DIR
                                "/symbols_v626.json' -q --accept all "
                                "--background white -o '" +
                                folder.getPath() + "' --format ";
    kt::test::runCommand(command + "pdf && " + command + "png --dpi 96 && pdftoppm -r 96 -png -singlefile '" +
                         folder.at("symbols_v626.json.pdf") + "' '" + folder.at("page") + "'");
    constexpr double tolerance = 0.2;
    for (const char* picture : {"page.png", "symbols_v626.json/001-drawing symbols.png"}) {
        EXPECT_LE(kt::test::comparePictures(folder.at(picture), KT_SOURCE_DIR "/tests/data/svg/symbols.png"), tolerance)
            << picture;
    }
}
#endif

}  // namespace
}  // namespace ktannot::test
