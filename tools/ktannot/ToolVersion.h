#pragma once

/// @file
/// Which release of the tool this is; the library tells its own by ktAnnotationLegacy::Version.

namespace ktannot {

/// "3.1.0"
const char* getToolVersion();

}  // namespace ktannot
