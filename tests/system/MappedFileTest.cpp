#include "platform/system/memory/ktMappedFile.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

TEST(MappedFile, GivesFilesOfEverySizeWithZerosBehind) {
    const std::string path = testing::TempDir() + "mapped" + std::to_string(::getpid());
    for (const int size : {0, 1, 4032, 4033, 4096, 100'000}) {
        const std::string content(static_cast<std::size_t>(size), 'x');
        std::ofstream(path, std::ios::binary) << content;
        kt::ktMappedFile file;
        std::string error;
        ASSERT_TRUE(file.open(path, error)) << error;
        const kt::ktMappedFile moved(std::move(file));
        const std::string expected = content + std::string(kt::ktMappedFile::sPadding, '\0');
        EXPECT_EQ(moved.getBytes().size(), content.size());
        EXPECT_EQ(std::memcmp(moved.getBytes().data(), expected.data(), expected.size()), 0) << size;
    }
    std::filesystem::remove(path);
}

}  // namespace
