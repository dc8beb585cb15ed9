#pragma once

/// @file
/// Counts annotations.

#include "legacy/annotation/IterateOverAnnotationTreeFunctorInterface.h"

namespace ktLegacy::annotation {

/// Adds 1 to the caller's counter for each annotation visited. Never resets it, so walks accumulate.
class KT_ANNOTATION_LEGACY_API CountAnnotationFunctor : public IterateOverAnnotationTreeFunctorInterface {
public:
    /// @param counter  must outlive the functor.
    explicit CountAnnotationFunctor(unsigned int& counter);
    ~CountAnnotationFunctor() override;

    void startProcessingAnnot(const ktAnnotationInterface::SubAnnot& entry, bool isRoot) override;

private:
    unsigned int* mCounter;
};

}  // namespace ktLegacy::annotation
