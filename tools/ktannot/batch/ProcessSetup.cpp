#include "tools/ktannot/batch/ProcessSetup.h"

#include "tools/ktannot/report/ExitCode.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <exception>
#include <string_view>

namespace ktannot {

namespace {

/// Writes to standard error and ends the process; safe in signal handlers.
[[noreturn]] void endProcess(std::string_view message, ExitCode code) {
    if (!message.empty() && write(STDERR_FILENO, message.data(), message.size()) < 0) {
        // There is nobody left to tell.
    }
    _exit(static_cast<int>(code));
}

void handleSignal(int signal) {
    switch (signal) {
        case SIGINT:
            endProcess({}, ExitCode::Interrupted);
        case SIGTERM:
            endProcess({}, ExitCode::Terminated);
        default:
            endProcess("ktannot: a file was cut short, or its disk failed, while it was being read\n",
                       ExitCode::EnvironmentFailed);
    }
}

[[noreturn]] void handleTerminate() {
    endProcess("ktannot: internal error; please report it with the output of 'ktannot version' and the document\n",
               ExitCode::InternalError);
}

void reserveStandardStreams() {
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        if (fcntl(descriptor, F_GETFD) < 0) {
            // The lowest free descriptor is this one. Reading it ends at once, writing to it fails.
            open("/dev/null", O_RDONLY);
        }
    }
}

}  // namespace

void setUpProcess() {
    reserveStandardStreams();
    std::set_terminate(handleTerminate);
    std::signal(SIGPIPE, SIG_IGN);
    // Files over the limit of the shell are failed writes, told with their names.
    std::signal(SIGXFSZ, SIG_IGN);
    for (const int signal : {SIGINT, SIGTERM, SIGBUS}) {
        std::signal(signal, handleSignal);
    }
}

}  // namespace ktannot
