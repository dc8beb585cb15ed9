#include "platform/system/ktLog.h"
#include "platform/system/ktLogObject.h"
#include "platform/system/ktSystem.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <vector>

namespace {

class RecordingLog : public kt::ktLog {
public:
    explicit RecordingLog(bool wantsThreadId = false, int leastType = Debug)
        : mWantsThreadId(wantsThreadId), mLeastType(leastType) {}
    void log(const kt::ktLogEntry& entry) noexcept override { mEntries.push_back(entry); }
    bool wantsThreadId() const override { return mWantsThreadId; }
    bool isEnabled(int type) const override { return type >= mLeastType; }

    std::vector<kt::ktLogEntry> mEntries;

private:
    bool mWantsThreadId;
    int mLeastType;
};

TEST(LogObject, WritesWhatItCollectedWhenItIsDestroyed) {
    RecordingLog log;
    {
        kt::ktLogObject line(5, "category", &log, nullptr, false);
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
    EXPECT_FALSE(entry.mThreadId.has_value());
    using namespace std::chrono;
    const auto now = duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
    EXPECT_LE(entry.mMilliseconds, now);
    EXPECT_GT(entry.mMilliseconds, now - 3'600'000);
}

TEST(LogObject, CarriesTheThreadWhenTheLogAsks) {
    RecordingLog log(true);
    kt::ktLogObject(1, nullptr, &log, nullptr, false) << "x";
    ASSERT_EQ(log.mEntries.size(), 1U);
    EXPECT_EQ(log.mEntries.front().mThreadId, std::this_thread::get_id());
}

TEST(LogObject, GoesNowhereWithoutALogOrForTypesThatNobodyKeeps) {
    kt::ktLogObject(5, nullptr, nullptr, nullptr, false) << "lost";
    RecordingLog log(false, kt::ktLog::Warning);
    kt::ktLogObject(kt::ktLog::Notice, nullptr, &log, nullptr, false) << "lost";
    EXPECT_TRUE(log.mEntries.empty());
}

TEST(Log, ReplacedLogSeesTheSystemComeAndGo) {
    ASSERT_NE(kt::ktLog::msInstance.load(), nullptr);
    RecordingLog log;
    kt::ktLog* before = kt::ktLog::msInstance.exchange(&log);
    kt::initializeKtSystem(kt::InitType::Full, false);
    kt::initializeKtSystem(kt::InitType::Full, false);
    kt::terminateKtSystem();
    kt::terminateKtSystem();
    kt::ktLog::msInstance = before;
    std::vector<std::string> messages;
    for (const kt::ktLogEntry& entry : log.mEntries) {
        messages.push_back(entry.mMessage);
    }
    EXPECT_THAT(messages, testing::ElementsAre("system: first user", "system: last user gone"));
}

TEST(Log, InitialisingBringsTheBundledLogBack) {
    kt::ktLog* before = kt::ktLog::msInstance.exchange(nullptr);
    kt::initializeKtSystem(kt::InitType::Minimal, false);
    EXPECT_EQ(kt::ktLog::msInstance.load(), &kt::ktLog::getBundledLog());
    kt::terminateKtSystem();
    kt::ktLog::msInstance = before;
}

TEST(Log, BundledLogWritesErrorsToStandardError) {
    testing::internal::CaptureStderr();
    kt::ktLogObject(kt::ktLog::Error, "cat", &kt::ktLog::getBundledLog(), "ctx", false) << "broken {}";
    kt::ktLogObject(kt::ktLog::Info, nullptr, &kt::ktLog::getBundledLog(), nullptr, false) << "unseen";
    const std::string output = testing::internal::GetCapturedStderr();
    EXPECT_THAT(output, testing::HasSubstr("[error] [cat] broken {} (ctx)\n"));
    EXPECT_THAT(output, testing::Not(testing::HasSubstr("unseen")));
}

}  // namespace
