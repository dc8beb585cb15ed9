#include "legacy/annotation/IterateOverAnnotationTreeFunctorInterface.h"

#include <list>

namespace ktLegacy::annotation {

namespace {

using SubAnnot = ktAnnotationInterface::SubAnnot;

/// An entry that was entered and not left yet.
struct OpenEntry {
    const SubAnnot* mEntry;
    std::list<SubAnnot>::const_iterator mNextChild;
    std::list<SubAnnot>::const_iterator mEndOfChildren;
};

}  // namespace

IterateOverAnnotationTreeFunctorInterface::IterateOverAnnotationTreeFunctorInterface() = default;

IterateOverAnnotationTreeFunctorInterface::~IterateOverAnnotationTreeFunctorInterface() = default;

void IterateOverAnnotationTreeFunctorInterface::startProcessingAnnot(const SubAnnot& /*entry*/, bool /*isRoot*/) {}

void IterateOverAnnotationTreeFunctorInterface::endProcessingAnnot(const SubAnnot& /*entry*/, bool /*isRoot*/) {}

void IterateOverAnnotationTreeFunctorInterface::iterateOverAnnotationTree(ktAnnotationInterface* root) {
    SubAnnot entry;
    entry.mAnnotation = root;
    entry.mAnchorLocation = SubAnnot::AnchorNone;
    iterateOverAnnotationTreeImpl(entry, true);
}

void IterateOverAnnotationTreeFunctorInterface::iterateOverAnnotationTree(
    std::vector<kt::ktPointer<ktAnnotationInterface>>& roots) {
    for (const kt::ktPointer<ktAnnotationInterface>& root : roots) {
        iterateOverAnnotationTree(root.get());
    }
}

void IterateOverAnnotationTreeFunctorInterface::iterateOverAnnotationTreeImpl(const SubAnnot& entry, bool isRoot) {
    std::vector<OpenEntry> open;
    const auto enter = [this, &open](const SubAnnot& entered, bool isTop) {
        if (entered.mAnnotation == nullptr) {
            return;
        }
        startProcessingAnnot(entered, isTop);
        const std::list<SubAnnot>& children = entered.mAnnotation->getSubAnnots();
        open.push_back({&entered, children.begin(), children.end()});
    };
    enter(entry, isRoot);
    while (!open.empty()) {
        OpenEntry& current = open.back();
        if (current.mNextChild != current.mEndOfChildren) {
            enter(*current.mNextChild++, false);
        } else {
            const SubAnnot& left = *current.mEntry;
            open.pop_back();
            endProcessingAnnot(left, isRoot && open.empty());
        }
    }
}

}  // namespace ktLegacy::annotation
