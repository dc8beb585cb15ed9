#include "platform/system/ktSystem.h"

#include "platform/system/LibInitCounter.h"
#include "platform/system/log/ktLog.h"
#include "platform/system/log/ktLogObject.h"

namespace kt {

namespace {
impl::LibInitCounter sInitCounter("system", true);
}

void initializeKtSystem(InitType type, bool verbose) {
    if (sInitCounter.incrementInitCounter()) {
        // A host may have left the log without a receiver.
        ktLog* none = nullptr;
        ktLog::msInstance.compare_exchange_strong(none, &ktLog::getBundledLog());
    }
    if (verbose) {
        ktLogObject(ktLog::Debug, nullptr, ktLog::msInstance, nullptr, false)
            << "system: initialised with type " << static_cast<int>(type) << ", " << sInitCounter.getCount()
            << " users";
    }
}

void terminateKtSystem() { sInitCounter.decrementInitCounter(); }

}  // namespace kt
