#pragma once

/// @file
/// Extent of items.

#include "platform/svg/BoundingBox.h"
#include "platform/svg/ItemInterface.h"

namespace kt::svg {

/// Chooses the items that count; a group that does not count is left out with all that it holds.
using ItemFilter = bool (*)(const ItemInterface& item);

/// The extent of an item and everything in it, with its own and all inner transforms applied. Exact for rectangles,
/// images and straight paths, and never less than the true extent of paths; within 1 % for curves and text. Outline
/// widths do not count. Groups without content add nothing.
/// @param filter  which items count; null: all.
/// @param matrix  applied last; null: none.
KT_SVG_API BoundingBox ComputeEstimatedBoundingBox(const ItemInterface& item, ItemFilter filter = nullptr,
                                                   const Transform* matrix = nullptr);

}  // namespace kt::svg
