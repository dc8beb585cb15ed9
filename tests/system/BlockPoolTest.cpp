#include "platform/system/ktSystem.h"
#include "platform/system/memory/ktBlockPool_p.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <span>
#include <thread>
#include <vector>

namespace {

using Blocks = std::vector<std::span<unsigned char>>;

/// Blocks of many sizes, each filled with a byte of its own.
Blocks makeBlocks(std::size_t count, unsigned seed) {
    Blocks blocks;
    for (std::size_t index = 0; index < count; ++index) {
        const std::size_t size = (index * 37 + seed) % (kt::ktBlockPool::sMaxBlockSize + 64);
        blocks.emplace_back(static_cast<unsigned char*>(kt::ktBlockPool::allocate(size)), size);
        std::memset(blocks.back().data(), static_cast<int>((index + seed) % 251), size);
    }
    return blocks;
}

/// Releases the blocks; none may have changed, and all must be aligned.
void releaseBlocks(const Blocks& blocks, unsigned seed) {
    std::size_t whole = 0;
    for (std::size_t index = 0; index < blocks.size(); ++index) {
        const auto hasByte = [&](unsigned char byte) { return byte == (index + seed) % 251; };
        const bool isAligned = reinterpret_cast<std::uintptr_t>(blocks[index].data()) % 16 == 0;
        whole += static_cast<std::size_t>(isAligned && std::ranges::all_of(blocks[index], hasByte));
        kt::ktBlockPool::release(blocks[index].data(), blocks[index].size());
    }
    EXPECT_EQ(whole, blocks.size());
}

// Blocks do not overlap, and their chunks are used again.
TEST(BlockPool, BlocksOutliveTheirThreadAndAreReleasedOnAnother) {
    std::vector<Blocks> made(4);
    std::vector<std::jthread> threads;
    for (unsigned number = 0; number < made.size(); ++number) {
        threads.emplace_back([&made, number] {
            releaseBlocks(makeBlocks(1000, number), number);
            made[number] = makeBlocks(1000, number);
        });
    }
    threads.clear();
    for (unsigned number = 0; number < made.size(); ++number) {
        threads.emplace_back([&made, other = (number + 1) % 4] { releaseBlocks(made[other], other); });
    }
}

TEST(BlockPool, IsGivenBackWithTheLastUserOfTheLibrary) {
    kt::initializeKtSystem(kt::InitType::Full, false);
    releaseBlocks(makeBlocks(20'000, 1), 1);
#ifndef KT_POOL_USES_HEAP
    EXPECT_GT(kt::ktBlockPool::giveBackUnused(), 30'000'000U) << "kept for the next document";
#endif
    releaseBlocks(makeBlocks(20'000, 2), 2);
    kt::terminateKtSystem();
    EXPECT_EQ(kt::ktBlockPool::giveBackUnused(), 0U);
}

}  // namespace
