#include "platform/annotation/TextProperties.h"
#include "platform/annotation/ktFonts.h"
#include "tests/annotation/LaidOutText.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace kt {
namespace {

using test::LaidOutText;
using test::makeProperties;
using testing::ElementsAre;
using testing::IsEmpty;
using text::FontProblem;

/// Takes all fonts of the process from a folder with copies of some.
class FolderOfFontsTest : public testing::Test {
protected:
    FolderOfFontsTest() : mFolder(std::filesystem::path(testing::TempDir()) / "kt & fonts") {
        std::filesystem::remove_all(mFolder);
        std::filesystem::create_directories(mFolder);
        for (const char* family : {"Liberation Sans", "DejaVu Sans"}) {
            const ktFontChoice choice = findFont(family, 0);
            EXPECT_TRUE(choice.mIsOfFamily) << family << " is needed by the tests";
            std::filesystem::copy(choice.mFile, mFolder / (std::string(family) + ".ttf"));
        }
    }

    const std::filesystem::path mFolder;
};

TEST_F(FolderOfFontsTest, GivesTheProcessItsFontsAlone) {
    EXPECT_FALSE(restrictFontsTo(mFolder / "none"));
    EXPECT_TRUE(findFont("Liberation Serif", 0).mIsOfFamily) << "nothing is changed by a folder without fonts";

    const text::TextSegmentToSvgConverter before;
    const text::TextArea area = test::makeLine(makeProperties("Liberation Serif", 5.0F), {"⌀ 12"});
    const float width = LaidOutText(area, before).mSize.x;
    ASSERT_TRUE(restrictFontsTo(mFolder));
    EXPECT_EQ(LaidOutText(area, before).mSize.x, width) << "converters keep their fonts";

    const struct {
        const char* mFamily;
        unsigned mStyle;
        const char* mUsed;
        bool mIsOfFamily;
        bool mIsSynthetic;
    } rows[] = {
        {"DejaVu Sans", 0, "DejaVu Sans", true, false},
        {"Arial", 0, "Liberation Sans", false, false},
        {"Arial", text::TextProperties::sItalic, "Liberation Sans", false, true},
        {"DejaVu Sans", text::TextProperties::sBold, "DejaVu Sans", true, true},
        {"Liberation Serif", 0, "Liberation Sans", false, false},
        {"No Such Family", 0, "Liberation Sans", false, false},
    };
    for (const auto& row : rows) {
        const ktFontChoice choice = findFont(row.mFamily, row.mStyle);
        EXPECT_EQ(choice.mFamily, row.mUsed) << row.mFamily;
        EXPECT_EQ(choice.mIsOfFamily, row.mIsOfFamily) << row.mFamily;
        EXPECT_EQ(choice.mIsSynthetic, row.mIsSynthetic) << row.mFamily;
        EXPECT_EQ(std::filesystem::path(choice.mFile).parent_path(), mFolder);
    }
}

TEST_F(FolderOfFontsTest, TellsWhichFontsCannotBeUsed) {
    ASSERT_TRUE(restrictFontsTo(mFolder));
    const std::string sans = mFolder / "Liberation Sans.ttf";
    const std::string other = mFolder / "DejaVu Sans.ttf";
    std::filesystem::remove(sans);
    const text::TextArea area = test::makeLine(makeProperties("Arial", 5.0F), {"width"});
    const text::TextSegmentToSvgConverter converter;
    EXPECT_TRUE(LaidOutText(area, converter).mIsDone) << "another font stands in";
    const std::vector<FontProblem> problems = converter.takeFontProblems();
    EXPECT_THAT(converter.takeFontProblems(), IsEmpty()) << "told once";
    ASSERT_EQ(problems.size(), 1U);
    EXPECT_EQ(problems[0].mKind, FontProblem::Kind::CannotOpen);
    EXPECT_EQ(problems[0].mFile, sans);
    EXPECT_FALSE(problems[0].mReason.empty());

    const text::TextSegmentToSvgConverter untouched;
    LaidOutText(test::makeLine(makeProperties("DejaVu Sans", 5.0F), {"width"}), untouched);
    EXPECT_THAT(untouched.takeFontProblems(), IsEmpty());

    std::ofstream(sans) << "no font";
    const text::TextSegmentToSvgConverter later;
    LaidOutText(area, later);
    EXPECT_THAT(later.takeFontProblems(), ElementsAre(FontProblem{FontProblem::Kind::Damaged, sans, ""}));
    // A missing glyph is no fault of the machine.
    LaidOutText(test::makeLine(makeProperties("DejaVu Sans", 5.0F), {"\U0010FFFD"}), untouched);
    EXPECT_THAT(untouched.takeFontProblems(), IsEmpty());
}

TEST(FontLanguagesTest, DoNotDependOnTheEnvironment) {
    setenv("FC_LANG", "ja", 1);
    EXPECT_TRUE(LaidOutText(makeProperties("Liberation Sans", 5.0F), "直径").mIsDone);
    FcStrList* languages = FcStrListCreate(FcGetDefaultLangs());
    std::vector<std::string> found;
    while (const FcChar8* language = FcStrListNext(languages)) {
        found.emplace_back(reinterpret_cast<const char*>(language));
    }
    FcStrListDone(languages);
    EXPECT_THAT(found, ElementsAre("en"));
    EXPECT_STREQ(getenv("FC_LANG"), "ja") << "the host's environment stays as it is";
}

}  // namespace
}  // namespace kt
