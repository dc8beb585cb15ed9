#pragma once

/// @file
/// Initialisation of libktAnnotationLegacy.

#include "legacy/ktAnnotationLegacyExport.h"

namespace kt {

/// Begins one use of the library; uses are counted. The first one initialises the platform's system, scene-graph and
/// annotation libraries, creates the shared empty list of sub-annotations and registers the factories of the stream
/// classes. Call it before reading streams, from one thread. When an allocation fails, the exception passes on and the
/// call has not been: nothing is initialised or counted.
KT_ANNOTATION_LEGACY_API void initializeKtAnnotationLegacyLibrary();

/// Ends one use of the library. The last one unregisters the factories, terminates the platform's libraries and
/// destroys the shared list, in this order. A surplus call does nothing.
KT_ANNOTATION_LEGACY_API void terminateKtAnnotationLegacyLibrary();

}  // namespace kt
