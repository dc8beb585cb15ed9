#include "tools/ktannot/NestingLimit.h"

#include "platform/system/memory/ktLimits.h"
#include "platform/system/variant/ktVariantListImpl.h"

#include <utility>
#include <vector>

namespace ktannot {

namespace {

using ktLegacy::ktAnnotationInterface;
using ktLegacy::ktAnnotationView;

struct DeepestLevel {
    bool mIsReached = false;
    bool mHasMissingChild = false;
};

/// Looks for annotations at the deepest level that is read.
DeepestLevel findDeepestLevel(const ktAnnotationView& view) {
    DeepestLevel result;
    std::vector<std::pair<const ktAnnotationInterface*, int>> open;
    for (const kt::ktPointer<ktAnnotationInterface>& annotation : view.mAnnotations) {
        open.emplace_back(annotation.get(), 1);
        while (!open.empty()) {
            const auto [current, level] = open.back();
            open.pop_back();
            if (current == nullptr) {
                result.mHasMissingChild |= level > kt::sMaxAnnotationDepth;
                continue;
            }
            result.mIsReached |= level == kt::sMaxAnnotationDepth;
            for (const ktAnnotationInterface::SubAnnot& child : current->getSubAnnots()) {
                open.emplace_back(child.mAnnotation.get(), level + 1);
            }
        }
    }
    return result;
}

/// The list of child maps of an annotation map, null when there is none.
const kt::ktVariant::ktVariantListImpl* getChildren(const kt::ktVariant::ktVariantMapImpl& map) {
    auto entry = map.find("children");
    if (entry == map.end()) {
        entry = map.find("childs");
    }
    return entry != map.end() ? entry->second.getList() : nullptr;
}

}  // namespace

bool NestingLimit::isReachedByStream(const ktAnnotationView& view) { return findDeepestLevel(view).mHasMissingChild; }

bool NestingLimit::isDeepestLevelRead(const ktAnnotationView& view) { return findDeepestLevel(view).mIsReached; }

bool NestingLimit::isReachedByVariant(const ktAnnotationView& view, const kt::ktVariant::ktVariantMapImpl& map) {
    const auto annotations = map.find("annotations");
    if (!isDeepestLevelRead(view) || annotations == map.end()) {
        return false;
    }
    std::vector<std::pair<const kt::ktVariant*, int>> open{{&annotations->second, 0}};
    while (!open.empty()) {
        const auto [value, level] = open.back();
        open.pop_back();
        const kt::ktVariant::ktVariantListImpl* list =
            value->isMap() ? getChildren(*value->getMap()) : value->getList();
        if (level == kt::sMaxAnnotationDepth) {
            if (list != nullptr && !list->empty()) {
                return true;
            }
            continue;
        }
        for (std::size_t index = 0; list != nullptr && index < list->size(); ++index) {
            if ((*list)[index].isMap()) {
                open.emplace_back(&(*list)[index], level + 1);
            }
        }
    }
    return false;
}

}  // namespace ktannot
