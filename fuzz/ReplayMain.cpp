/// @file
/// Runs a fuzz target over files instead of made-up input, so that seeds and past findings are part of every test run.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" __attribute__((weak)) int LLVMFuzzerInitialize(int* argc, char*** argv);

int main(int argc, char** argv) {
    if (LLVMFuzzerInitialize != nullptr) {
        LLVMFuzzerInitialize(&argc, &argv);
    }
    std::size_t count = 0;
    for (int index = 1; index < argc; ++index) {
        for (const auto& entry : std::filesystem::directory_iterator(argv[index])) {
            std::ifstream file(entry.path(), std::ios::binary);
            const std::vector<char> content{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
            // A copy of exactly that size on the heap: the address sanitizer sees the first byte read too many.
            const std::vector<std::uint8_t> input(content.begin(), content.end());
            LLVMFuzzerTestOneInput(input.data(), input.size());
            ++count;
        }
    }
    std::printf("replayed %zu inputs\n", count);
    return count > 0 ? 0 : 1;
}
