#pragma once

/// @file
/// Initialisation of libktSystem.

#include "platform/system/ktSystemExport.h"

namespace kt {

/// How much of the system library a user needs.
enum class InitType : int {
    Minimal = 0,  ///< types and registry
    Log = 1,      ///< and the log
    Full = 2,     ///< everything
};

/// Initialises the system library; counted. The bundled platform needs the same for every type.
/// @param verbose  write a debug line about it.
KT_SYSTEM_API void initializeKtSystem(InitType type, bool verbose);

/// Ends one use of the system library; surplus calls do nothing. The last one gives memory that is kept for further
/// documents back to the system. Objects, the log and the factory registry stay usable.
KT_SYSTEM_API void terminateKtSystem();

}  // namespace kt
