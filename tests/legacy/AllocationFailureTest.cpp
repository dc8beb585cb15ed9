#include "tests/legacy/LegacyLibraryTest.h"

#include <cstdlib>
#include <new>

namespace {

/// Allocations until one fails; below 0 none does.
long sAllocationsLeft = -1;

void* allocate(std::size_t size) {
    void* block = sAllocationsLeft == 0 ? nullptr : std::malloc(size);
    sAllocationsLeft -= sAllocationsLeft > 0 ? 1 : 0;
    return block != nullptr ? block : throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t /*size*/) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t /*size*/) noexcept { std::free(block); }

namespace ktLegacy {
namespace {

constexpr const char* sLongText = "a text too long to lie inside a string object or a variant";

AnnotationPointer makeTree(const AnnotationPointer& shared) {
    const TextPointer top = makeText(std::string(sLongText) + "\n" + std::string(5'000, 'x'));
    top->mLines[0][0].setTextProperties({sLongText, 2.0F});
    top->mMetadata["key"] = sLongText;
    const ktPointer<ktAnnotationRaster> child(new ktAnnotationRaster);
    child->SetName(sLongText);
    child->mLeaders.resize(3);
    addChild(addChild(*child, shared), shared);
    addChild(addChild(*top, child), shared);
    return top;
}

// A copy that fails half-way gives back what it took: the references to shared children here, memory under the leak
// checker.
TEST(AllocationFailure, LeavesNothingBehindWhereverACopyFails) {
    const AnnotationPointer shared(new HostAnnotation);
    ktAnnotationView view;
    view.mAnnotations = {makeTree(shared), makeTree(shared)};
    const AnnotationPointer target = makeTree(nullptr);
    const int references = shared->GetReferences();
    const auto fails = [&](auto action, long allocations) {
        bool hasFailed = false;
        try {
            sAllocationsLeft = allocations;
            action();
        } catch (const std::bad_alloc&) {
            hasFailed = true;
        }
        sAllocationsLeft = -1;
        EXPECT_EQ(shared->GetReferences(), references) << "after " << allocations << " allocations";
        return hasFailed;
    };
    long failures = 0;
    while (fails([&] { ktAnnotationView copy(view); }, failures)) {
        ++failures;
    }
    EXPECT_GT(failures, 10);
    for (long allocations = 0; allocations < 5; ++allocations) {
        EXPECT_TRUE(fails([&] { *target = *view.mAnnotations[0]; }, allocations));
        EXPECT_EQ(target->getSubAnnotsCount(), 2U) << "the old children stay";
        EXPECT_EQ(target->getSubAnnots().back().mAnnotation, nullptr);
    }
}

}  // namespace
}  // namespace ktLegacy
