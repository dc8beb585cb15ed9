#include "tools/ktannot/ProcessLog.h"

#include <limits>
#include <utility>

namespace ktannot {

ProcessLog::ProcessLog()
    : mReplaced(kt::ktLog::msInstance.exchange(this)), mThreshold(std::numeric_limits<int>::max()) {}

ProcessLog::~ProcessLog() { kt::ktLog::msInstance.store(mReplaced); }

void ProcessLog::setListener(int threshold, std::function<void(const kt::ktLogEntry&)> listener) {
    const std::lock_guard lock(mListenerMutex);
    mListener = std::move(listener);
    mThreshold.store(threshold);
}

void ProcessLog::log(const kt::ktLogEntry& entry) noexcept {
    if (!isEnabled(entry.mType)) {
        return;
    }
    const std::lock_guard lock(mListenerMutex);
    if (mListener) {
        mListener(entry);
    }
}

}  // namespace ktannot
