#pragma once

/// @file
/// Leaders that the current model has no place for.

#include "legacy/ktAnnotationInterface.h"

#include <cstddef>

namespace ktLegacy {

/// Counts the leaders and measure leaders of annotations nested two or more levels below a top annotation: the
/// migration hands a child's leaders to its parent, but a grandchild's stay in the child's converted annotation, of
/// which only the drawing is kept.
std::size_t countNestedLeaders(ktAnnotationInterface& annotation);

}  // namespace ktLegacy
