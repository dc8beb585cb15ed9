#include "tools/ktannot/batch/StopSignal.h"

#include <atomic>

namespace ktannot {

namespace {

std::atomic<int> sPending{0};
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler may only touch lock-free atomics");

void handle(int signal) { sPending.store(signal); }

}  // namespace

StopSignal::StopSignal() {
    sPending.store(0);
    struct sigaction action {};
    action.sa_handler = handle;
    action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, &mReplacedInterrupt);
    sigaction(SIGTERM, &action, &mReplacedTermination);
}

StopSignal::~StopSignal() {
    sigaction(SIGINT, &mReplacedInterrupt, nullptr);
    sigaction(SIGTERM, &mReplacedTermination, nullptr);
}

void StopSignal::request(int signal) { sPending.store(signal); }

int StopSignal::getPending() { return sPending.load(); }

}  // namespace ktannot
