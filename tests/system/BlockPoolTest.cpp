#include "platform/system/ktBlockPool.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <thread>
#include <utility>
#include <vector>

namespace {

using Block = std::pair<unsigned char*, std::size_t>;

/// Blocks of many sizes, each filled with a byte of its own.
std::vector<Block> makeBlocks(std::size_t count, unsigned seed) {
    std::vector<Block> blocks;
    for (std::size_t index = 0; index < count; ++index) {
        const std::size_t size = (index * 37 + seed) % (kt::ktBlockPool::sMaxBlockSize + 64);
        auto* bytes = static_cast<unsigned char*>(kt::ktBlockPool::allocate(size));
        std::memset(bytes, static_cast<int>((index + seed) % 251), size);
        blocks.emplace_back(bytes, size);
    }
    return blocks;
}

/// Releases the blocks; the number of those whose bytes have changed or that are not aligned.
int releaseBlocks(const std::vector<Block>& blocks, unsigned seed) {
    int damaged = 0;
    for (std::size_t index = 0; index < blocks.size(); ++index) {
        const auto [bytes, size] = blocks[index];
        bool isWhole = reinterpret_cast<std::uintptr_t>(bytes) % 16 == 0;
        for (std::size_t byte = 0; byte < size; ++byte) {
            isWhole = isWhole && bytes[byte] == (index + seed) % 251;
        }
        damaged += static_cast<int>(!isWhole);
        kt::ktBlockPool::release(bytes, size);
    }
    return damaged;
}

TEST(BlockPool, BlocksDoNotOverlapAndChunksAreUsedAgain) {
    for (unsigned round = 0; round < 4; ++round) {
        const std::vector<Block> kept = makeBlocks(500, round);
        EXPECT_EQ(releaseBlocks(makeBlocks(2000, round + 1), round + 1), 0);
        EXPECT_EQ(releaseBlocks(kept, round), 0);
    }
}

TEST(BlockPool, BlocksOutliveTheirThreadAndAreReleasedOnAnother) {
    constexpr unsigned sThreads = 4;
    std::vector<std::vector<Block>> made(sThreads);
    std::vector<std::thread> threads;
    for (unsigned number = 0; number < sThreads; ++number) {
        threads.emplace_back([&made, number] {
            EXPECT_EQ(releaseBlocks(makeBlocks(1000, number), number), 0);
            made[number] = makeBlocks(1000, number);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    threads.clear();
    for (unsigned number = 0; number < sThreads; ++number) {
        threads.emplace_back([&made, number] {
            const unsigned other = (number + 1) % sThreads;
            EXPECT_EQ(releaseBlocks(made[other], other), 0);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

}  // namespace
