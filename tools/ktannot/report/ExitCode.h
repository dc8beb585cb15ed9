#pragma once

/// @file
/// How the tool's process ends.

#include <algorithm>

namespace ktannot {

/// The process's exit codes, the same for all commands. The value 1 is never used. What a command met is summed up with
/// worst(): of several outcomes the highest counts.
enum class ExitCode : int {
    AllWell = 0,
    WrongUsage = 2,         ///< nothing was done
    WithProblems = 3,       ///< done, with problems or messages, though every view came through
    Refused = 4,            ///< a document or view was refused or could not be migrated: the same again on a retry
    LimitReached = 5,       ///< a limit ended the work on a document
    EnvironmentFailed = 6,  ///< file not readable, disk full, no permission: a retry may help
    InternalError = 7,
    Interrupted = 130,  ///< by SIGINT
    Terminated = 143,   ///< by SIGTERM
};

/// The outcome that counts when both apply.
constexpr ExitCode worst(ExitCode a, ExitCode b) { return std::max(a, b); }

}  // namespace ktannot
