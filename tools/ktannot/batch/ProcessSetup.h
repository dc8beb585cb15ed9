#pragma once

/// @file
/// What the tool asks of its process.

namespace ktannot {

/// Makes every end of the process one that the exit codes know:
/// - writing to a pipe that nobody reads fails instead of killing the process;
/// - SIGINT and SIGTERM end it with 130 and 143 (commands that have something to put in order install StopSignal);
/// - a document that is cut short while it is being read ends it with ExitCode::EnvironmentFailed;
/// - std::terminate ends it with ExitCode::InternalError and asks for a report;
/// - standard streams that were closed by the caller do not become files of ours.
void setUpProcess();

}  // namespace ktannot
