#pragma once

/// @file
/// Walk over trees of annotations.

#include "legacy/ktAnnotationInterface.h"

#include <vector>

namespace ktLegacy::annotation {

/// Base of visitors of annotation trees: a walk is depth first and tells the visitor when it enters and when it leaves
/// each annotation. Entries without an annotation are passed over. Trees must not change during a walk, and a walk over
/// a tree that contains itself does not end; a walk needs no stack in proportion to a tree's depth.
///
/// The order of the virtual operations is part of the binary interface.
class KT_ANNOTATION_LEGACY_API IterateOverAnnotationTreeFunctorInterface {
public:
    IterateOverAnnotationTreeFunctorInterface();
    virtual ~IterateOverAnnotationTreeFunctorInterface();

    /// Called before the children of entry's annotation are visited; isRoot is true for the top annotation of a walk
    /// only.
    virtual void startProcessingAnnot(const ktAnnotationInterface::SubAnnot& entry, bool isRoot);
    /// Called after the children of entry's annotation were visited.
    virtual void endProcessingAnnot(const ktAnnotationInterface::SubAnnot& entry, bool isRoot);

    /// Walks one tree; a null root makes no calls. The root's entry has the anchor AnchorNone. The walk holds a
    /// reference to the root: one that nobody else holds is deleted when the walk is over, and one on the stack must
    /// not be walked.
    void iterateOverAnnotationTree(ktAnnotationInterface* root);
    /// Walks each tree in order.
    void iterateOverAnnotationTree(std::vector<kt::ktPointer<ktAnnotationInterface>>& roots);
    /// Walks the tree of an entry.
    void iterateOverAnnotationTreeImpl(const ktAnnotationInterface::SubAnnot& entry, bool isRoot);
};

}  // namespace ktLegacy::annotation
