#include "platform/system/ktSystem.h"
#include "platform/system/log/ktLogObject.h"
#include "tests/support/RecordingLog.h"

#include <gmock/gmock.h>

#include <optional>
#include <thread>
#include <vector>

namespace {

using kt::ktLog;
using kt::ktLogObject;
using ktTest::RecordingLog;

TEST(LogObject, WritesWhatItCollectedWhenItIsDestroyed) {
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
        EXPECT_GT(entry.mMilliseconds, 0);
        log.mLeastType = ktLog::Warning;
        ktLogObject(ktLog::Notice, nullptr, &log, nullptr, false) << "lost";
        ktLogObject(5, nullptr, nullptr, nullptr, false) << "lost";
        EXPECT_EQ(log.mEntries.size(), 1U);
    }
}

TEST(Log, BundledLogComesBackWhenThereIsNone) {
    EXPECT_EQ(ktLog::msInstance.exchange(nullptr), &ktLog::getBundledLog());
    kt::initializeKtSystem(kt::InitType::Minimal, false);
    EXPECT_EQ(ktLog::msInstance.load(), &ktLog::getBundledLog());
    kt::terminateKtSystem();
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
