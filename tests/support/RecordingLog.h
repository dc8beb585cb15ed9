#pragma once

/// @file
/// What is logged while a test looks.

#include "platform/system/log/ktLog.h"

#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace ktTest {

/// Takes the place of the log while it lives and keeps every entry.
class RecordingLog final : public kt::ktLog {
public:
    RecordingLog() : mPrevious(msInstance.exchange(this)) {}
    ~RecordingLog() override { msInstance = mPrevious; }

    void log(const kt::ktLogEntry& entry) noexcept override {
        const std::scoped_lock lock(mMutex);
        mEntries.push_back(entry);
    }
    bool isEnabled(int type) const override { return type >= mLeastType; }
    bool wantsThreadId() const override { return mWantsThreadId; }

    /// The messages of a type since the last call; a category or context shows in the message.
    std::vector<std::string> takeMessages(int type) {
        std::vector<std::string> messages;
        for (const kt::ktLogEntry& entry : std::exchange(mEntries, {})) {
            if (entry.mType == type) {
                messages.push_back(entry.mCategory + entry.mContext + entry.mMessage);
            }
        }
        return messages;
    }

    std::vector<kt::ktLogEntry> mEntries;
    int mLeastType = Debug;
    bool mWantsThreadId = false;

private:
    kt::ktLog* mPrevious;
    std::mutex mMutex;
};

}  // namespace ktTest
