#pragma once

/// @file
/// With ktVariant in the minimal platform.

#include "platform/system/variant/ktVariant.h"
