#include "tools/ktannot/DocumentLog.h"

#include <new>

namespace ktannot {

namespace {

/// Innermost open capture of the thread.
thread_local DocumentLog::Capture* sCapture = nullptr;

}  // namespace

DocumentLog::Capture::Capture() : mOuter(std::exchange(sCapture, this)) {}

DocumentLog::Capture::~Capture() { sCapture = mOuter; }

DocumentLog::DocumentLog() : mReplaced(kt::ktLog::msInstance.exchange(this)) {}

DocumentLog::~DocumentLog() { kt::ktLog::msInstance.store(mReplaced); }

void DocumentLog::setListener(std::function<void(const kt::ktLogEntry&)> listener) {
    const std::lock_guard lock(mListenerMutex);
    mListener = std::move(listener);
}

void DocumentLog::log(const kt::ktLogEntry& entry) noexcept {
    if (!isEnabled(entry.mType)) {
        return;
    }
    if (sCapture != nullptr) {
        try {
            sCapture->mLines.push_back({entry.mType, entry.mMessage});
        } catch (const std::bad_alloc&) {
            // A line that finds no memory is lost; the work that wrote it will find none either and say so.
            return;
        }
    } else {
        mReplaced->log(entry);
    }
    const std::lock_guard lock(mListenerMutex);
    if (mListener) {
        mListener(entry);
    }
}

}  // namespace ktannot
