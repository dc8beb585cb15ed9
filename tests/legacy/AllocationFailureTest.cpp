#include "legacy/ktAnnotationRaster.h"
#include "legacy/ktAnnotationText.h"
#include "legacy/ktAnnotationView.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <new>
#include <string>

namespace {

/// Allocations until one fails; below 0 none does.
long sAllocationsLeft = -1;

void* allocate(std::size_t size) {
    if (sAllocationsLeft == 0) {
        throw std::bad_alloc();
    }
    if (sAllocationsLeft > 0) {
        --sAllocationsLeft;
    }
    void* block = std::malloc(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
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

class HostAnnotation : public ktAnnotationInterface {
public:
    HostAnnotation() : ktAnnotationInterface(Undefined) {}
};

constexpr const char* sLongText = "a text too long to lie inside a string object or a variant";

kt::ktPointer<ktAnnotationInterface> makeTree(ktAnnotationInterface* shared) {
    const kt::ktPointer<ktAnnotationText> top(new ktAnnotationText);
    top->setText(std::string(sLongText) + "\n" + std::string(5'000, 'x'));
    top->mLines[0][0].setTextProperties({sLongText, 2.0F});
    top->mMetadata["key"] = sLongText;
    const kt::ktPointer<ktAnnotationRaster> child(new ktAnnotationRaster);
    child->SetName(sLongText);
    child->mLeaders.resize(3);
    for (ktAnnotationInterface* annotation : {static_cast<ktAnnotationInterface*>(child), shared}) {
        top->editSubAnnots().emplace_back().mAnnotation = annotation;
        child->editSubAnnots().emplace_back().mAnnotation = shared;
    }
    return top;
}

// A copy that fails half-way gives back what it took: the references to shared children here, memory under the leak
// checker.
TEST(AllocationFailure, LeavesNothingBehindWhereverACopyFails) {
    const kt::ktPointer<ktAnnotationInterface> shared(new HostAnnotation);
    ktAnnotationView view;
    view.mAnnotations = {makeTree(shared), makeTree(shared)};
    kt::ktPointer<ktAnnotationInterface> target = makeTree(nullptr);
    const int references = shared->GetReferences();
    int failures = 0;
    const auto fails = [&](auto action, long allocations) {
        try {
            sAllocationsLeft = allocations;
            action();
        } catch (const std::bad_alloc&) {
            ++failures;
        }
        const bool hasFailed = sAllocationsLeft == 0;
        sAllocationsLeft = -1;
        EXPECT_EQ(shared->GetReferences(), references) << "after " << allocations << " allocations";
        return hasFailed;
    };
    for (long allocations = 0; fails([&] { ktAnnotationView copy(view); }, allocations); ++allocations) {
    }
    const int copyFailures = failures;
    EXPECT_GT(copyFailures, 10);

    // An assignment that fails leaves the old children.
    for (long allocations = 0; allocations < 5; ++allocations) {
        fails([&] { *target = *view.mAnnotations[0]; }, allocations);
        EXPECT_EQ(target->getSubAnnotsCount(), 2U);
        EXPECT_EQ(target->getSubAnnots().back().mAnnotation, nullptr);
    }
    EXPECT_EQ(failures, copyFailures + 5);
}

}  // namespace
}  // namespace ktLegacy
