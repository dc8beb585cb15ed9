#include "tools/ktannot/StopSignal.h"

#include <atomic>
#include <csignal>

namespace ktannot {

namespace {

std::atomic<int> sPending{0};
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler may only touch lock-free atomics");

void handle(int signal) { sPending.store(signal); }

void setHandler(void (*handler)(int), int flags) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

}  // namespace

StopSignal::StopSignal() {
    sPending.store(0);
    setHandler(handle, static_cast<int>(SA_RESETHAND | SA_RESTART));
}

StopSignal::~StopSignal() { setHandler(SIG_DFL, 0); }

int StopSignal::getPending() { return sPending.load(); }

}  // namespace ktannot
