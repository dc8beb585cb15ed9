#pragma once

/// @file
/// Orderly end on request.

#include <csignal>

namespace ktannot {

/// While it lives, SIGINT and SIGTERM ask for an end instead of ending the process; a second one ends it at once. What
/// the signals did before comes back at the end. One object at a time.
class StopSignal {
public:
    StopSignal();
    StopSignal(const StopSignal&) = delete;
    StopSignal& operator=(const StopSignal&) = delete;
    ~StopSignal();

    /// The signal that asked for an end, 0 when none did. Safe to call from any thread.
    static int getPending();
    /// Asks for an end as a signal would.
    static void request(int signal);

private:
    struct sigaction mReplacedInterrupt {};
    struct sigaction mReplacedTermination {};
};

}  // namespace ktannot
