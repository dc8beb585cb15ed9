#include "legacy/annotation/CountAnnotationFunctor.h"
#include "legacy/ktAnnotationText.h"
#include "legacy/ktAnnotationView.h"
#include "tests/legacy/LegacyLibraryTest.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace ktLegacy {
namespace {

using annotation::CountAnnotationFunctor;
using annotation::IterateOverAnnotationTreeFunctorInterface;
using kt::ktPointer;
using testing::ElementsAre;
using Anchor = ktAnnotationInterface::SubAnnot::AnchorLocation;
using AnnotationPointer = ktPointer<ktAnnotationInterface>;

class Tree : public ktTest::LegacyLibraryTest {};

AnnotationPointer makeNamed(const std::string& name) {
    const AnnotationPointer annotation(new ktAnnotationText);
    annotation->SetName(name);
    return annotation;
}

/// A chain of that many annotations, one below the other.
AnnotationPointer makeChain(int depth) {
    const AnnotationPointer top = makeNamed("top");
    ktAnnotationInterface* last = top;
    for (int level = 1; level < depth; ++level) {
        last = last->editSubAnnots().emplace_back(makeNamed("")).mAnnotation;
    }
    return top;
}

unsigned int count(ktAnnotationInterface* root) {
    unsigned int counter = 0;
    CountAnnotationFunctor(counter).iterateOverAnnotationTree(root);
    return counter;
}

class Recorder : public IterateOverAnnotationTreeFunctorInterface {
public:
    void startProcessingAnnot(const ktAnnotationInterface::SubAnnot& entry, bool isRoot) override {
        add("+", entry, isRoot);
    }
    void endProcessingAnnot(const ktAnnotationInterface::SubAnnot& entry, bool isRoot) override {
        add("-", entry, isRoot);
    }
    std::vector<std::string> mCalls;

private:
    void add(const char* sign, const ktAnnotationInterface::SubAnnot& entry, bool isRoot) {
        mCalls.push_back(sign + entry.mAnnotation->GetName() + std::to_string(entry.mAnchorLocation) +
                         (isRoot ? " root" : ""));
    }
};

TEST_F(Tree, IsWalkedDepthFirst) {
    const AnnotationPointer root = makeNamed("r");
    const AnnotationPointer first = makeNamed("a");
    first->editSubAnnots().push_back({makeNamed("b"), Anchor::AnchorTopLeft});
    root->editSubAnnots().push_back({first, Anchor::AnchorLeftTop});
    root->editSubAnnots().push_back({nullptr, Anchor::AnchorLeftTop});
    root->editSubAnnots().push_back({makeNamed("c"), Anchor::AnchorBottomLeft});

    Recorder recorder;
    recorder.iterateOverAnnotationTree(root);
    EXPECT_THAT(recorder.mCalls, ElementsAre("+r0 root", "+a9", "+b4", "-b4", "-a9", "+c1", "-c1", "-r0 root"));
    EXPECT_EQ(root->GetReferences(), 1);

    recorder.mCalls.clear();
    recorder.iterateOverAnnotationTreeImpl(root->getSubAnnots().front(), false);
    EXPECT_THAT(recorder.mCalls, ElementsAre("+a9", "+b4", "-b4", "-a9")) << "no root in this walk";
}

TEST_F(Tree, CountingAccumulatesOverRoots) {
    std::vector<AnnotationPointer> roots{makeNamed("a"), nullptr, makeNamed("b"), makeChain(3)};
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
    chain = nullptr;
    EXPECT_EQ(count(clone), depth);
}

TEST_F(Tree, WideOnesAreCopiedWalkedAndDestroyed) {
    constexpr unsigned int width = 1'000'000;
    const AnnotationPointer root = makeNamed("root");
    root->editSubAnnots().resize(width);
    for (ktAnnotationInterface::SubAnnot& entry : root->editSubAnnots()) {
        entry.mAnnotation = new ktAnnotationText;
    }
    const AnnotationPointer clone(root->cloneAnnotation());
    EXPECT_EQ(count(clone), width + 1);
}

TEST_F(Tree, ChildrenHeldElsewhereSurviveTheirParent) {
    AnnotationPointer chain = makeChain(4);
    const AnnotationPointer second = chain->getSubAnnots().front().mAnnotation;
    chain = nullptr;
    EXPECT_EQ(second->GetReferences(), 1);
    EXPECT_EQ(count(second), 3U);
}

}  // namespace
}  // namespace ktLegacy
