// Initialisation when memory ends.

#include "legacy/ktAnnotationView.h"
#include "library/ktAnnotationLegacyLibrary.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

namespace {

/// Allocations until one fails; below 0 none does.
int sAllocationsLeft = -1;

void* allocate(std::size_t size) {
    void* block = sAllocationsLeft == 0 ? nullptr : std::malloc(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    sAllocationsLeft -= sAllocationsLeft > 0 ? 1 : 0;
    return block;
}

}  // namespace

void* operator new(std::size_t size) { return allocate(size); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t /*size*/) noexcept { std::free(block); }

namespace {

/// False when memory ended before the library was up.
bool initializeWithin(int allocations) {
    sAllocationsLeft = allocations;
    try {
        kt::initializeKtAnnotationLegacyLibrary();
        sAllocationsLeft = -1;
        return true;
    } catch (const std::bad_alloc&) {
        sAllocationsLeft = -1;
        return false;
    }
}

TEST(Initialisation, HappensAsAWholeOrNotAtAll) {
    const auto find = kt::ktRttiInterface::FindFactoryFunction;
    int allocations = 0;
    for (; !initializeWithin(allocations); ++allocations) {
        EXPECT_EQ(ktLegacy::ktAnnotationInterface::sDummySubAnnots, nullptr) << allocations;
        EXPECT_EQ(find("ktCore.ktAnnotationView"), nullptr) << allocations;
        EXPECT_EQ(find("ktCore.ktAnnotationMetadata"), nullptr) << allocations;
    }
    EXPECT_GE(allocations, 3) << "memory ended at several places";
    EXPECT_NE(ktLegacy::ktAnnotationInterface::sDummySubAnnots, nullptr);
    EXPECT_NE(find("ktCore.ktAnnotationMetadata"), nullptr);
    sAllocationsLeft = 0;
    EXPECT_NO_THROW(kt::terminateKtAnnotationLegacyLibrary());
    sAllocationsLeft = -1;
    EXPECT_EQ(find("ktCore.ktAnnotationView"), nullptr) << "there was one user only";
}

}  // namespace
