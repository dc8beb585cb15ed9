#include "platform/system/ktSystem.h"

#include "platform/system/LibInitCounter.h"
#include "platform/system/log/ktLog.h"
#include "platform/system/log/ktLogObject.h"
#include "platform/system/memory/ktBlockPool.h"

namespace kt {

namespace {

impl::LibInitCounter sInitCounter("system", true);

void writeDebugLine(InitType type) noexcept {
    try {
        ktLogObject(ktLog::Debug, nullptr, ktLog::msInstance, nullptr, false)
            << "system: initialised with type " << static_cast<int>(type) << ", " << sInitCounter.getCount()
            << " users";
    } catch (...) {
        // The library is initialised; a line that cannot be written is lost.
    }
}

}  // namespace

void initializeKtSystem(InitType type, bool verbose) {
    if (sInitCounter.incrementInitCounter()) {
        // A host may have left the log without a receiver.
        ktLog* none = nullptr;
        ktLog::msInstance.compare_exchange_strong(none, &ktLog::getBundledLog());
    }
    if (verbose) {
        writeDebugLine(type);
    }
}

void terminateKtSystem() {
    if (sInitCounter.decrementInitCounter()) {
        ktBlockPool::giveBackUnused();
    }
}

}  // namespace kt
