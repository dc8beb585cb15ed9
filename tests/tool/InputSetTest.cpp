#include "tests/tool/TemporaryFolder.h"
#include "tools/ktannot/InputSet.h"
#include "tools/ktannot/UsageError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace ktannot {
namespace {

using test::TemporaryFolder;
using testing::ElementsAre;

std::vector<std::string> getSources(const InputSet& inputs, const std::string& folder) {
    std::vector<std::string> sources;
    for (const Input& input : inputs.getInputs()) {
        const bool isBelow = input.mSource.starts_with(folder);
        sources.push_back(isBelow ? input.mSource.substr(folder.size()) : input.mSource);
    }
    return sources;
}

TEST(InputSet, FoldersGiveTheirDocumentsInByteOrder) {
    const TemporaryFolder folder;
    for (const char* name :
         {"b.kts", "B.kts", "a/z.json", "a.json", "a/b/c.kts", "notes.txt", "kts", "x.KTS", "ä.json"}) {
        folder.write(name, "{}");
    }
    const InputSet inputs({folder.getPath()});
    EXPECT_THAT(getSources(inputs, folder.getPath()),
                ElementsAre("/B.kts", "/a.json", "/a/b/c.kts", "/a/z.json", "/b.kts", "/ä.json"));
    EXPECT_EQ(inputs.getInputs()[2].mDocumentName, "a/b/c.kts");
    EXPECT_EQ(inputs.getInputs()[2].mPath, folder.at("a/b/c.kts"));
    EXPECT_TRUE(inputs.getInputs()[1].mIsJsonFromFolder);
    EXPECT_FALSE(inputs.getInputs()[2].mIsJsonFromFolder);
}

TEST(InputSet, FoldersAreSearchedWithoutFollowingLinksOrOpeningPipes) {
    const TemporaryFolder elsewhere;
    elsewhere.write("secret.kts", "");
    const TemporaryFolder folder;
    folder.write("real.kts", "");
    std::filesystem::create_directory_symlink(elsewhere.getPath(), folder.at("linked"));
    std::filesystem::create_symlink(elsewhere.at("secret.kts"), folder.at("link.kts"));
    std::filesystem::create_directory_symlink(folder.getPath(), folder.at("loop"));
    ASSERT_EQ(mkfifo(folder.at("pipe.kts").c_str(), 0600), 0);
    EXPECT_THAT(getSources(InputSet({folder.getPath()}), folder.getPath()), ElementsAre("/real.kts"));
}

TEST(InputSet, ArgumentsKeepTheirOrder) {
    const TemporaryFolder folder;
    folder.write("in/a.kts", "");
    const std::string file = folder.write("z.txt", "");
    const InputSet inputs({file, "-", folder.at("in/"), file});
    EXPECT_THAT(getSources(inputs, folder.getPath()), ElementsAre("/z.txt", "-", "/in/a.kts", "/z.txt"));
    EXPECT_TRUE(inputs.getInputs()[1].isStandardInput());
    EXPECT_EQ(inputs.getInputs()[0].mDocumentName, "z.txt");
    EXPECT_FALSE(inputs.getInputs()[0].isStandardInput());
}

TEST(InputSet, MissingFilesKeepTheirPlaceWithAReason) {
    const TemporaryFolder folder;
    const std::string file = folder.write("a.kts", "");
    const InputSet inputs({folder.at("missing.kts"), file});
    ASSERT_EQ(inputs.getInputs().size(), 2U);
    EXPECT_EQ(inputs.getInputs()[0].mFailure, "cannot be read: No such file or directory");
    EXPECT_EQ(inputs.getInputs()[1].mFailure, "");
}

TEST(InputSet, StandardInputTwiceIsWrongUsage) {
    EXPECT_THROW(InputSet({"-", "a", "-"}), UsageError);
    EXPECT_NO_THROW(InputSet({"-"}));
}

}  // namespace
}  // namespace ktannot
