#include "tests/tool/TemporaryFolder.h"
#include "tools/ktannot/files/OutputFile.h"
#include "tools/ktannot/files/SafeName.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <string>
#include <tuple>
#include <utility>

namespace ktannot {
namespace {

// The file of another appears between the look at the folder and the end of the work.
TEST(OutputFile, StandsBackForAFileThatAppearedMeanwhile) {
    using Existing = OutputFile::Existing;
    for (const auto& [existing, failure, content] :
         {std::tuple(Existing::Keep, OutputFile::sExistsAlready, "theirs"), {Existing::Replace, "", "ours"}}) {
        const test::TemporaryFolder folder;
        {
            OutputFile file(folder.at("new/a.svg"));
            EXPECT_EQ(file.write("ours"), "");
            folder.write("new/a.svg", "theirs");
            EXPECT_EQ(file.publish(existing), failure);
        }
        EXPECT_EQ(test::readFile(folder.at("new/a.svg")), content);
        const std::filesystem::directory_iterator files(folder.at("new"));
        EXPECT_EQ(std::distance(begin(files), end(files)), 1) << "nothing temporary stays";
    }
}

TEST(SafeName, KeepsWhatEveryFileSystemTakes) {
    const std::string tooLong(200, 'x');
    for (const auto& [name, safe] : {std::pair<std::string, std::string>{"Front 2", "Front 2"},
                                     {"角度 (3)", "角度 (3)"},
                                     {"end...", "end"},
                                     {"end. .", "end"},
                                     {".. /hidden", "_hidden"},
                                     {"../..", "_"},
                                     {"a/b\\c\n\n\xff\xfe:d", "a_b_c_d"},
                                     {"", "view"},
                                     {" . ", "view"},
                                     {tooLong, tooLong.substr(0, 120)}}) {
        EXPECT_EQ(makeSafeFileName(name), safe) << name;
    }
}

}  // namespace
}  // namespace ktannot
