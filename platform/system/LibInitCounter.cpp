#include "platform/system/LibInitCounter.h"

#include "platform/system/log/ktLog.h"
#include "platform/system/log/ktLogObject.h"

namespace kt::impl {

namespace {

void writeDebugLine(const char* name, const char* text) noexcept {
    try {
        ktLogObject(ktLog::Debug, nullptr, ktLog::msInstance, nullptr, false) << name << ": " << text;
    } catch (...) {
        // The count stands; a line that cannot be written is lost.
    }
}

}  // namespace

LibInitCounter::LibInitCounter(const char* name, bool reportUnbalanced)
    : mName(name), mReportUnbalanced(reportUnbalanced) {}

LibInitCounter::~LibInitCounter() {
    if (mCount > 0 && mReportUnbalanced) {
        writeDebugLine(mName, "unloaded with users left");
    }
}

bool LibInitCounter::incrementInitCounter() {
    {
        const std::lock_guard lock(mMutex);
        if (++mCount != 1) {
            return false;
        }
    }
    writeDebugLine(mName, "first user");
    return true;
}

bool LibInitCounter::decrementInitCounter() {
    bool isSurplus = false;
    {
        const std::lock_guard lock(mMutex);
        isSurplus = mCount == 0;
        if (!isSurplus && --mCount != 0) {
            return false;
        }
    }
    if (!isSurplus) {
        writeDebugLine(mName, "last user gone");
    } else if (mReportUnbalanced) {
        writeDebugLine(mName, "terminated more often than initialised");
    }
    return !isSurplus;
}

int LibInitCounter::getCount() const {
    const std::lock_guard lock(mMutex);
    return mCount;
}

}  // namespace kt::impl
