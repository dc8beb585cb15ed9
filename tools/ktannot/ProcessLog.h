#pragma once

/// @file
/// The process's log.

#include "platform/system/log/ktLog.h"

#include <atomic>
#include <functional>
#include <mutex>

namespace ktannot {

/// The process's log while the tool runs. What is in it is for those who ask for it: everything that matters to a user
/// comes as a finding. One object at a time.
class ProcessLog : public kt::ktLog {
public:
    /// Takes the place of the current log.
    ProcessLog();
    ~ProcessLog() override;

    /// Hands lines to the listener from that type on, one at a time, from the thread that wrote them. The listener must
    /// not throw.
    void setListener(int threshold, std::function<void(const kt::ktLogEntry& entry)> listener);

    void log(const kt::ktLogEntry& entry) noexcept override;
    bool isEnabled(int type) const override { return type >= mThreshold.load(); }

private:
    kt::ktLog* mReplaced;
    std::atomic<int> mThreshold;
    std::mutex mListenerMutex;
    std::function<void(const kt::ktLogEntry&)> mListener;
};

}  // namespace ktannot
