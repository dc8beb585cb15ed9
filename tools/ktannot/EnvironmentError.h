#pragma once

/// @file
/// Failures of the channels that end a command at once.

#include <stdexcept>

namespace ktannot {

/// Thrown before the work begins when the channels do not allow it: no permission, no such file, a full disk. Ends
/// the tool with ExitCode::EnvironmentFailed. The text names the place and the remedy.
class EnvironmentError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace ktannot
