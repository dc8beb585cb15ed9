#pragma once

/// @file
/// Dump of the current model.

#include "platform/annotation/ktCadAnnotationView.h"

namespace ktannot {

class JsonWriter;

/// Writes a view of the current model as one JSON value, items and all; null when view is null. Groups nested to any
/// depth need no stack.
void writeCadViewJson(JsonWriter& json, const kt::ktCadAnnotationView* view);

}  // namespace ktannot
