#pragma once

/// @file
/// Initialisation of libktSceneGraph.

#include "platform/scenegraph/ktSceneGraphExport.h"

namespace kt {

/// Initialises the scene-graph library, and the system library below it; counted.
KT_SCENEGRAPH_API void initializeKtSceneGraph();

/// Ends one use of the scene-graph library.
KT_SCENEGRAPH_API void terminateKtSceneGraph();

}  // namespace kt
