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

TEST(MappedFile, ReadsPipesToTheirEnd) {
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const std::string content(300'000, 'p');
    std::jthread writer([&content, end = ends[1]] {
        for (std::size_t done = 0; done < content.size();) {
            done += static_cast<std::size_t>(
                std::max<ssize_t>(::write(end, content.data() + done, content.size() - done), 0));
        }
        ::close(end);
    });
    kt::ktMappedFile file;
    std::string error;
    EXPECT_TRUE(file.open(ends[0], error)) << error;
    writer.join();
    ::close(ends[0]);
    expectContent(file, content);
}

TEST(MappedFile, TellsWhyNot) {
    kt::ktMappedFile file;
    std::string error;
    EXPECT_FALSE(file.open("/no/such/file", error));
    EXPECT_EQ(error, "No such file or directory");
    EXPECT_FALSE(file.open(testing::TempDir(), error));
    EXPECT_EQ(error, "Is a directory");
    EXPECT_TRUE(file.getBytes().empty());
}

}  // namespace
