#include "platform/system/ktLogObject.h"
#include "tools/ktannot/DocumentLog.h"

#include <gtest/gtest.h>

#include <thread>

namespace ktannot {
namespace {

using kt::ktLog;

constexpr std::size_t sCount = 1000;

void write(int type, const std::string& text) {
    kt::ktLogObject(type, nullptr, ktLog::msInstance, nullptr, false) << text;
}

TEST(DocumentLog, LinesFromTheThresholdOnGoToTheInnermostCaptureOfTheirThread) {
    ktLog* before = ktLog::msInstance;
    {
        DocumentLog log;
        std::size_t heard = 0;
        log.setListener([&heard](const kt::ktLogEntry&) { ++heard; });
        const auto work = [](const std::string& name) {
            const DocumentLog::Capture outer;
            {
                const DocumentLog::Capture inner;
                for (std::size_t index = 0; index < sCount; ++index) {
                    write(ktLog::Notice, "quiet");
                    write(ktLog::Error, name + std::to_string(index));
                }
                ASSERT_EQ(inner.getLines().size(), sCount);
                for (std::size_t index = 0; index < sCount; ++index) {
                    EXPECT_EQ(inner.getLines()[index].mMessage, name + std::to_string(index));
                }
            }
            write(ktLog::Warning, name);
            ASSERT_EQ(outer.getLines().size(), 1U);
            EXPECT_EQ(outer.getLines()[0].mMessage, name);
            EXPECT_EQ(outer.getLines()[0].mType, ktLog::Warning);
        };
        std::thread first(work, "first");
        std::thread second(work, "second");
        first.join();
        second.join();
        EXPECT_EQ(heard, 2 * (sCount + 1));
        log.setThreshold(ktLog::Debug);
        const DocumentLog::Capture capture;
        write(ktLog::Debug, "detail");
        EXPECT_EQ(capture.getLines().size(), 1U);
    }
    EXPECT_EQ(ktLog::msInstance.load(), before);
}

}  // namespace
}  // namespace ktannot
