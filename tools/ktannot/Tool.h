#pragma once

/// @file
/// The tool as a whole.

namespace ktannot {

/// Runs the tool.
/// @return the process's exit code.
int runTool(int argumentCount, char** arguments);

}  // namespace ktannot
