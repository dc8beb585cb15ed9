#pragma once

/// @file
/// Annotations that were nested too deeply to be read.

#include "legacy/ktAnnotationView.h"
#include "platform/system/variant/ktVariantMapImpl.h"

namespace ktannot {

/// Tells whether reading a view stopped at kt::sMaxAnnotationDepth. The readers pass over what is deeper, so this looks
/// at the deepest annotations that were read.
class NestingLimit {
public:
    NestingLimit() = delete;

    /// For a view of a document stream: an annotation at the deepest level has an entry that stayed without a child.
    static bool isReachedByStream(const ktLegacy::ktAnnotationView& view);
    /// Whether annotations of the deepest level were read, without which no view of a variant document met the limit.
    static bool isDeepestLevelRead(const ktLegacy::ktAnnotationView& view);
    /// For a view of a variant document.
    /// @param map  what the view was made from.
    static bool isReachedByVariant(const ktLegacy::ktAnnotationView& view, const kt::ktVariant::ktVariantMapImpl& map);
};

}  // namespace ktannot
