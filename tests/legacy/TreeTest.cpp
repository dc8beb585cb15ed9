#include "legacy/annotation/CountAnnotationFunctor.h"
#include "tests/legacy/LegacyLibraryTest.h"

#include <vector>

namespace ktLegacy {
namespace {

using annotation::CountAnnotationFunctor;

class Tree : public ktTest::LegacyLibraryTest {};

/// A chain of that many annotations, one below the other.
AnnotationPointer makeChain(int depth) {
    const AnnotationPointer top = makeText("");
    ktAnnotationInterface* last = top;
    for (int level = 1; level < depth; ++level) {
        addChild(*last, makeText(""));
        last = last->getSubAnnots().back().mAnnotation;
    }
    return top;
}

unsigned int count(ktAnnotationInterface* root) {
    unsigned int counter = 0;
    CountAnnotationFunctor(counter).iterateOverAnnotationTree(root);
    return counter;
}

struct Recorder : annotation::IterateOverAnnotationTreeFunctorInterface {
    using Entry = ktAnnotationInterface::SubAnnot;
    void startProcessingAnnot(const Entry& entry, bool isRoot) override { add("+", entry, isRoot); }
    void endProcessingAnnot(const Entry& entry, bool isRoot) override { add("-", entry, isRoot); }
    void add(const char* sign, const Entry& entry, bool isRoot) {
        mCalls +=
            sign + entry.mAnnotation->GetName() + std::to_string(entry.mAnchorLocation) + (isRoot ? " root " : " ");
    }
    std::string mCalls;
};

TEST_F(Tree, IsWalkedDepthFirst) {
    const AnnotationPointer root = makeText("", "r");
    const AnnotationPointer first = makeText("", "a");
    addChild(*first, makeText("", "b"), 4);
    addChild(addChild(addChild(*root, first, 9), nullptr, 9), makeText("", "c"), 1);
    Recorder recorder;
    recorder.iterateOverAnnotationTree(root);
    EXPECT_EQ(recorder.mCalls, "+r0 root +a9 +b4 -b4 -a9 +c1 -c1 -r0 root ");
    EXPECT_EQ(root->GetReferences(), 1);
    recorder.mCalls.clear();
    recorder.iterateOverAnnotationTreeImpl(root->getSubAnnots().front(), false);
    EXPECT_EQ(recorder.mCalls, "+a9 +b4 -b4 -a9 ") << "no root in this walk";
}

TEST_F(Tree, CountingAccumulatesOverRoots) {
    std::vector<AnnotationPointer> roots{makeText(""), nullptr, makeText(""), makeChain(3)};
    unsigned int counter = 0;
    CountAnnotationFunctor functor(counter);
    functor.iterateOverAnnotationTree(roots);
    EXPECT_EQ(counter, 5U);
    functor.iterateOverAnnotationTree(roots);
    EXPECT_EQ(counter, 10U);
    EXPECT_EQ(count(nullptr), 0U);
}

// Recursion would need more than the usual 8 MiB of stack here.
TEST_F(Tree, DeepOnesAreCopiedWalkedAssignedAndDestroyed) {
    constexpr unsigned int depth = 100'000;
    AnnotationPointer chain = makeChain(depth);
    const AnnotationPointer clone(chain->cloneAnnotation());
    EXPECT_EQ(count(clone), depth);
    *chain = *clone->getSubAnnots().front().mAnnotation;
    EXPECT_EQ(count(chain), depth - 1);
    const AnnotationPointer second = chain->getSubAnnots().front().mAnnotation;
    chain = nullptr;
    EXPECT_EQ(count(clone), depth);
    EXPECT_EQ(second->GetReferences(), 1);
    EXPECT_EQ(count(second), depth - 2) << "held elsewhere it survives its parent";
}

TEST_F(Tree, WideOnesAreCopiedWalkedAndDestroyed) {
    constexpr unsigned int width = 1'000'000;
    const AnnotationPointer root = makeText("");
    root->editSubAnnots().resize(width);
    for (auto& entry : root->editSubAnnots()) {
        entry.mAnnotation = new ktAnnotationText;
    }
    EXPECT_EQ(count(AnnotationPointer(root->cloneAnnotation())), width + 1);
}

}  // namespace
}  // namespace ktLegacy
