#pragma once

/// @file
/// Wrong use of the tool.

#include <stdexcept>

namespace ktannot {

/// Thrown before anything is done when the command line does not make sense; ends the tool with ExitCode::WrongUsage.
/// The text names the argument and the remedy.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace ktannot
