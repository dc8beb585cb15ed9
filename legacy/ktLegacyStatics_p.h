#pragma once

/// @file
/// What the library sets up by itself when it is loaded.

#include "platform/system/LibInitCounter.h"

namespace ktLegacy::impl {

/// Counts the users of the library.
extern kt::impl::LibInitCounter sInitCounter;

}  // namespace ktLegacy::impl
