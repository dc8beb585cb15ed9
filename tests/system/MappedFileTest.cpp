#include "platform/system/ktMappedFile.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

namespace {

void expectContent(const kt::ktMappedFile& file, const std::string& content) {
    const auto* bytes = reinterpret_cast<const char*>(file.getBytes().data());
    EXPECT_TRUE(std::string(bytes, file.getBytes().size()) == content) << content.size();
    const char* end = bytes + file.getBytes().size();
    EXPECT_EQ(std::count(end, end + kt::ktMappedFile::sPadding, '\0'), kt::ktMappedFile::sPadding) << content.size();
}

TEST(MappedFile, GivesFilesOfEverySizeWithZerosBehind) {
    const std::string path = testing::TempDir() + "mapped" + std::to_string(::getpid());
    for (const int size : {0, 1, 4032, 4033, 4096, 100'000}) {
        const std::string content(static_cast<std::size_t>(size), 'x');
        std::ofstream(path, std::ios::binary) << content;
        kt::ktMappedFile file;
        std::string error;
        ASSERT_TRUE(file.open(path, error)) << error;
        expectContent(file, content);
        expectContent(kt::ktMappedFile(std::move(file)), content);
    }
    std::filesystem::remove(path);
}

}  // namespace
