#include "platform/system/ktLog.h"
#include "platform/system/ktLogObject.h"
#include "platform/system/ktSystem.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <thread>
#include <vector>

namespace {

using kt::ktLog;
using kt::ktLogObject;

class RecordingLog : public ktLog {
public:
    void log(const kt::ktLogEntry& entry) noexcept override { mEntries.push_back(entry); }
    bool wantsThreadId() const override { return mWantsThreadId; }
    bool isEnabled(int type) const override { return type >= mLeastType; }

    std::vector<kt::ktLogEntry> mEntries;
    bool mWantsThreadId = false;
    int mLeastType = Debug;
};

TEST(LogObject, WritesWhatItCollectedWhenItIsDestroyed) {
    using namespace std::chrono;
    for (const bool wantsThreadId : {false, true}) {
        RecordingLog log;
        log.mWantsThreadId = wantsThreadId;
        {
            ktLogObject line(5, "category", &log, nullptr, false);
            const char* none = nullptr;
            line << "a" << std::string("b") << none << 'c' << -12 << 250U << 0.5;
            EXPECT_TRUE(log.mEntries.empty());
        }
        ASSERT_EQ(log.mEntries.size(), 1U);
        const kt::ktLogEntry& entry = log.mEntries.front();
        EXPECT_EQ(entry.mMessage, "ab[NullPtr]c-122500.5");
        EXPECT_EQ(entry.mType, 5);
        EXPECT_EQ(entry.mCategory, "category");
        EXPECT_EQ(entry.mContext, "");
        EXPECT_EQ(entry.mThreadId, wantsThreadId ? std::optional(std::this_thread::get_id()) : std::nullopt);
        const auto now = duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
        EXPECT_LE(entry.mMilliseconds, now);
        EXPECT_GT(entry.mMilliseconds, now - 3'600'000);
    }
}

TEST(LogObject, GoesNowhereWithoutALogOrForTypesThatNobodyKeeps) {
    ktLogObject(5, nullptr, nullptr, nullptr, false) << "lost";
    RecordingLog log;
    log.mLeastType = ktLog::Warning;
    ktLogObject(ktLog::Notice, nullptr, &log, nullptr, false) << "lost";
    EXPECT_TRUE(log.mEntries.empty());
}

TEST(Log, ReplacedLogSeesTheSystemComeAndGo) {
    RecordingLog log;
    ktLog* before = ktLog::msInstance.exchange(&log);
    EXPECT_EQ(before, &ktLog::getBundledLog());
    kt::initializeKtSystem(kt::InitType::Full, false);
    kt::initializeKtSystem(kt::InitType::Full, false);
    kt::terminateKtSystem();
    kt::terminateKtSystem();
    EXPECT_THAT(log.mEntries,
                testing::ElementsAre(testing::Field(&kt::ktLogEntry::mMessage, "system: first user"),
                                     testing::Field(&kt::ktLogEntry::mMessage, "system: last user gone")));
    // Without any log the bundled one comes back.
    ktLog::msInstance = nullptr;
    kt::initializeKtSystem(kt::InitType::Minimal, false);
    EXPECT_EQ(ktLog::msInstance.load(), &ktLog::getBundledLog());
    kt::terminateKtSystem();
    ktLog::msInstance = before;
}

TEST(Log, BundledLogWritesErrorsToStandardError) {
    testing::internal::CaptureStderr();
    ktLogObject(ktLog::Error, "cat", &ktLog::getBundledLog(), "ctx", false) << "broken {}";
    ktLogObject(ktLog::Info, nullptr, &ktLog::getBundledLog(), nullptr, false) << "unseen";
    const std::string output = testing::internal::GetCapturedStderr();
    EXPECT_THAT(output, testing::HasSubstr("[error] [cat] broken {} (ctx)\n"));
    EXPECT_THAT(output, testing::Not(testing::HasSubstr("unseen")));
}

}  // namespace
