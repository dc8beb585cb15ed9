#include "legacy/annotation/CountAnnotationFunctor.h"

namespace ktLegacy::annotation {

CountAnnotationFunctor::CountAnnotationFunctor(unsigned int& counter) : mCounter(&counter) {}

CountAnnotationFunctor::~CountAnnotationFunctor() = default;

void CountAnnotationFunctor::startProcessingAnnot(const ktAnnotationInterface::SubAnnot& /*entry*/, bool /*isRoot*/) {
    ++*mCounter;
}

}  // namespace ktLegacy::annotation
