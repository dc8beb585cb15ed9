#include "document/NestedLeaders_p.h"
#include "legacy/annotation/IterateOverAnnotationTreeFunctorInterface.h"

namespace ktLegacy {

namespace {

class NestedLeaderCounter : public annotation::IterateOverAnnotationTreeFunctorInterface {
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

std::size_t countNestedLeaders(ktAnnotationInterface& annotation) {
    if (annotation.getSubAnnots().empty()) {
        return 0;
    }
    NestedLeaderCounter counter;
    counter.iterateOverAnnotationTree(&annotation);
    return counter.getCount();
}

}  // namespace ktLegacy
