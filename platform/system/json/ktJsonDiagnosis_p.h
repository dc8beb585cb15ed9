#pragma once

/// @file
/// Where and why a text is no JSON.

#include "platform/system/json/ktVariantJson.h"

#include <string_view>

namespace kt::impl {

/// Completes an error that has an offset: line and column of that place.
void locateJsonError(std::string_view text, ktJsonError& error);

/// Finds the first fault of a refused text with a second parser. When that one finds none, error keeps its message and
/// offset.
void diagnoseJson(std::string_view text, ktJsonError& error);

}  // namespace kt::impl
