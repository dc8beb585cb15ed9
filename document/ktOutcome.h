#pragma once

/// @file
/// How work on a document ended.

#include <algorithm>
#include <cstdint>

namespace ktLegacy {

/// How reading or drawing ended, with the exit codes of the tool as values. Of several outcomes the highest counts.
enum class ktOutcome : std::uint8_t {
    AllWell = 0,
    WithProblems = 3,       ///< done, and there are findings; every view came through
    Refused = 4,            ///< a document or view was refused or could not be migrated; the same again on a retry
    LimitReached = 5,       ///< a limit was reached; a finding names it
    EnvironmentFailed = 6,  ///< a file, memory or the machine; a retry may help
    InternalError = 7,
};

inline ktOutcome worst(ktOutcome a, ktOutcome b) { return std::max(a, b); }

}  // namespace ktLegacy
