#pragma once

/// @file
/// Initialisation of libktAnnotation.

#include "platform/annotation/ktAnnotationExport.h"

namespace kt {

/// Initialises the current annotation library, and the system library below it; counted.
/// The process's font configuration is told to prefer fonts for English, whatever the environment's languages are, so
/// that a document gives the same drawing in every locale; for that, the environment is changed for a moment when the
/// library is first used, and a host with threads should initialise it before they start.
/// @param preloadFonts  open the default font now rather than at the first text.
KT_ANNOTATION_API void initializeKtAnnotationLibrary(bool preloadFonts);

/// Ends one use of the current annotation library; the last one closes all fonts that no converter holds.
KT_ANNOTATION_API void terminateKtAnnotationLibrary();

}  // namespace kt
