#include "tools/ktannot/NestedLeaders.h"

#include "legacy/annotation/IterateOverAnnotationTreeFunctorInterface.h"

namespace ktannot {

namespace {

using ktLegacy::ktAnnotationInterface;

class NestedLeaderCounter : public ktLegacy::annotation::IterateOverAnnotationTreeFunctorInterface {
public:
    void startProcessingAnnot(const ktAnnotationInterface::SubAnnot& entry, bool /*isRoot*/) override {
        if (mDepth >= 2) {
            mCount += entry.mAnnotation->mLeaders.size() + entry.mAnnotation->mMeasureLeaders.size();
        }
        ++mDepth;
    }
    void endProcessingAnnot(const ktAnnotationInterface::SubAnnot& /*entry*/, bool /*isRoot*/) override { --mDepth; }

    std::size_t getCount() const { return mCount; }

private:
    std::size_t mDepth = 0;  ///< of the next annotation; the top annotation is at 0
    std::size_t mCount = 0;
};

}  // namespace

std::size_t countNestedLeaders(const ktLegacy::ktAnnotationView& view) {
    NestedLeaderCounter counter;
    for (const kt::ktPointer<ktAnnotationInterface>& annotation : view.mAnnotations) {
        if (annotation != nullptr && !annotation->getSubAnnots().empty()) {
            counter.iterateOverAnnotationTree(annotation.get());
        }
    }
    return counter.getCount();
}

}  // namespace ktannot
