#include "tests/migrate/DrawingCheck.h"
#include "tests/migrate/SampleText.h"
#include "tests/tool/TemporaryFolder.h"
#include "tests/tool/ToolRunner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace ktannot::test {
namespace {

/// What begins like a picture of each kind; drawings embed the bytes as they are.
const std::string& getPng() {
    static const std::string sContent = readTree(KT_SAMPLES_DIR "/images")["one_pixel.png"];
    return sContent;
}

std::string getContent(const std::string& kind) {
    static const std::map<std::string, std::string> sContents = {
        {"png", getPng()},
        {"jpeg", "\xff\xd8\xff\xe0 and more"},
        {"gif", "GIF89a and more"},
        {"webp", std::string("RIFF\x10\0\0\0WEBPVP8 ", 16)},
        {"text", "<svg xmlns='http://www.w3.org/2000/svg'/>"},
        {"cut webp", "RIFF\x10"},
        {"nothing", ""},
    };
    return sContents.at(kind);
}

/// A folder with documents, in which nothing but what a test puts there can be found.
class MigratePicture : public testing::Test {
protected:
    /// What becomes of a raster with that name: the media type of the embedded image, or "refused".
    std::string migrate(const std::string& rasterName, const std::vector<std::string>& options = {}) const {
        const std::string raster = R"({"type":"raster","name":"r","sizeem":[1,1],"rastername":")" + rasterName + "\"}";
        std::vector<std::string> arguments{"migrate", "-o", "-", mFolder.write("in/a.json", makeView("v", raster))};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const ToolResult result = runTool(arguments);
        if (result.mExitCode != 0) {
            EXPECT_EQ(result.mExitCode, 4) << result.mError;
            return "refused";
        }
        EXPECT_EQ(findFaults(result.mOut), "");
        const std::size_t begin = result.mOut.find("data:image/");
        return begin == std::string::npos ? "nothing" : result.mOut.substr(begin, result.mOut.find(';', begin) - begin);
    }

    const TemporaryFolder mFolder;
};

TEST_F(MigratePicture, IsFoundByNameAndContent) {
    const struct {
        const char* mFile;
        const char* mKind;
        const char* mRasterName;
        const char* mExpected;
    } cases[] = {
        {"in/a.png", "png", "a.png", "data:image/png"},
        {"in/b", "png", "b", "data:image/png"},
        {"in/c.png", "png", "c", "data:image/png"},
        {"in/d.jpg", "jpeg", "d", "data:image/jpeg"},
        {"in/e.jpeg", "jpeg", "e", "data:image/jpeg"},
        {"in/f.gif", "gif", "f", "data:image/gif"},
        {"in/g.webp", "webp", "g", "data:image/webp"},
        {"in/images/h.png", "png", "h", "data:image/png"},
        {"in/i.png", "jpeg", "i", "data:image/jpeg"},  // the content counts
        {"in/j.bmp", "png", "j", "refused"},           // no suffix of a picture
        {"in/k.png", "text", "k", "refused"},
        {"in/l.webp", "cut webp", "l", "refused"},
        {"in/m.png", "nothing", "m", "refused"},
        {"in/.n.png", "png", ".n", "data:image/png"},
        {"in/pictures/o.png", "png", "o", "refused"},
        {"in/pictures/p.png", "png", "pictures/p.png", "refused"},
        {"q.png", "png", "../q.png", "refused"},
        {"in/images/r.png", "png", "./images/r.png", "refused"},
        {"in/images/s.png", "png", "..", "refused"},
        {"in/t.png", "png", "t.png\\u0000.txt", "refused"},
        {"in/u.png", "png", "", "refused"},
        {"in/v.PNG", "png", "v", "refused"},
    };
    for (const auto& [file, kind, rasterName, expected] : cases) {
        mFolder.write(file, getContent(kind));
        EXPECT_EQ(migrate(rasterName), expected) << file << " as '" << rasterName << "'";
    }
    const std::string absolute = mFolder.write("in/w.png", getPng());
    EXPECT_EQ(migrate(absolute), "refused");
}

TEST_F(MigratePicture, AFolderGivenTakesThePlaceOfTheOthers) {
    mFolder.write("in/near.png", getPng());
    mFolder.write("far/away.png", getPng());
    EXPECT_EQ(migrate("away"), "refused");
    EXPECT_EQ(migrate("away", {"--raster-dir", mFolder.at("far")}), "data:image/png");
    EXPECT_EQ(migrate("near", {"--raster-dir", mFolder.at("far")}), "refused");
    EXPECT_EQ(migrate("near", {"--raster-dir", mFolder.at("no such folder")}), "refused");
    std::filesystem::create_directory_symlink(mFolder.at("far"), mFolder.at("link"));
    EXPECT_EQ(migrate("away", {"--raster-dir", mFolder.at("link")}), "data:image/png");
}

TEST_F(MigratePicture, LinksAndSpecialFilesAreNotOpened) {
    const std::string secret = mFolder.write("secret.png", getPng());
    mFolder.write("elsewhere/x.png", getPng());
    mFolder.write("in/b.jpg", getContent("jpeg"));
    std::filesystem::create_symlink(secret, mFolder.at("in/a.png"));
    std::filesystem::create_symlink(secret, mFolder.at("in/b.png"));
    std::filesystem::create_directory_symlink(mFolder.at("elsewhere"), mFolder.at("in/images"));
    std::filesystem::create_directories(mFolder.at("in/folder.png"));
    mkfifo(mFolder.at("in/pipe.png").c_str(), 0600);
    EXPECT_EQ(migrate("a"), "refused");
    EXPECT_EQ(migrate("b"), "data:image/jpeg");  // the link is passed over, what follows is found
    EXPECT_EQ(migrate("x"), "refused");
    EXPECT_EQ(migrate("folder"), "refused");
    EXPECT_EQ(migrate("pipe"), "refused");
}

TEST_F(MigratePicture, ADocumentReachedByALinkHasItsPicturesBesideTheLink) {
    mFolder.write("in/a.json", makeView("v", R"({"type":"raster","name":"r","sizeem":[1,1],"rastername":"p"})"));
    mFolder.write("in/p.png", getPng());
    std::filesystem::create_directory_symlink(mFolder.at("in"), mFolder.at("link"));
    EXPECT_EQ(runTool({"migrate", "-o", "-", mFolder.at("link/a.json")}).mExitCode, 0);
}

TEST_F(MigratePicture, LargePicturesAreLeftOutWithAWarning) {
    mFolder.write("in/large.png", getPng() + std::string(7'400'000, ' '));
    const std::string document = mFolder.write(
        "in/a.json", makeView("v", R"({"type":"raster","name":"r","sizeem":[1,1],"rastername":"large"})"));
    const ToolResult result = runTool({"migrate", document, "-o", mFolder.at("out")});
    EXPECT_EQ(result.mExitCode, 3);
    EXPECT_THAT(result.mError, testing::HasSubstr("view 'v': "));
    const auto tree = readTree(mFolder.at("out"));
    EXPECT_EQ(tree.size(), 1U);
    EXPECT_EQ(findFaults(tree), "");
}

}  // namespace
}  // namespace ktannot::test
