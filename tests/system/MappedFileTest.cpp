#include "platform/system/ktMappedFile.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

namespace {

std::string textOf(const kt::ktMappedFile& file) {
    return {reinterpret_cast<const char*>(file.getBytes().data()), file.getBytes().size()};
}

bool hasPadding(const kt::ktMappedFile& file) {
    const std::byte* end = file.getBytes().data() + file.getBytes().size();
    return std::all_of(end, end + kt::ktMappedFile::sPadding, [](std::byte byte) { return byte == std::byte{0}; });
}

TEST(MappedFile, GivesFilesOfEverySizeWithZerosBehind) {
    const std::string path = testing::TempDir() + "mapped" + std::to_string(::getpid());
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{4032}, std::size_t{4033},
                                   std::size_t{4096}, std::size_t{100'000}}) {
        const std::string content(size, 'x');
        std::ofstream(path, std::ios::binary) << content;
        kt::ktMappedFile file;
        std::string error;
        ASSERT_TRUE(file.open(path, error)) << error;
        EXPECT_EQ(textOf(file), content);
        EXPECT_TRUE(hasPadding(file)) << size;
        const kt::ktMappedFile moved(std::move(file));
        EXPECT_EQ(moved.getBytes().size(), size);
    }
    std::filesystem::remove(path);
}

TEST(MappedFile, ReadsPipesToTheirEnd) {
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const std::string content(300'000, 'p');
    std::thread writer([&content, end = ends[1]] {
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
    EXPECT_EQ(textOf(file), content);
    EXPECT_TRUE(hasPadding(file));
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
