#include "platform/system/ktLogObject.h"
#include "tools/ktannot/DocumentLog.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>

namespace ktannot {
namespace {

void write(int type, const std::string& text) {
    kt::ktLogObject(type, nullptr, kt::ktLog::msInstance, nullptr, false) << text;
}

TEST(DocumentLog, ThreadsKeepTheirLinesApart) {
    DocumentLog log;
    const auto work = [](const std::string& name) {
        const DocumentLog::Capture capture;
        for (int index = 0; index < 1000; ++index) {
            write(kt::ktLog::Error, name + std::to_string(index));
        }
        ASSERT_EQ(capture.getLines().size(), 1000U);
        for (std::size_t index = 0; index < 1000; ++index) {
            EXPECT_EQ(capture.getLines()[index].mMessage, name + std::to_string(index));
        }
    };
    std::thread first(work, "first");
    std::thread second(work, "second");
    first.join();
    second.join();
}

TEST(DocumentLog, InnermostCaptureGetsTheLines) {
    DocumentLog log;
    const DocumentLog::Capture outer;
    {
        const DocumentLog::Capture inner;
        write(kt::ktLog::Warning, "one");
        EXPECT_EQ(inner.getLines().size(), 1U);
    }
    write(kt::ktLog::Error, "two");
    ASSERT_EQ(outer.getLines().size(), 1U);
    EXPECT_EQ(outer.getLines()[0].mMessage, "two");
    EXPECT_EQ(outer.getLines()[0].mType, kt::ktLog::Error);
}

TEST(DocumentLog, KeepsLinesFromTheThresholdOn) {
    DocumentLog log;
    std::string heard;
    log.setListener([&heard](const kt::ktLogEntry& entry) { heard += entry.mMessage + " "; });
    const DocumentLog::Capture capture;
    write(kt::ktLog::Notice, "quiet");
    write(kt::ktLog::Warning, "loud");
    log.setThreshold(kt::ktLog::Debug);
    write(kt::ktLog::Debug, "detail");
    EXPECT_EQ(heard, "loud detail ");
    EXPECT_EQ(capture.getLines().size(), 2U);
}

TEST(DocumentLog, GivesTheLogBack) {
    kt::ktLog* before = kt::ktLog::msInstance;
    { const DocumentLog log; }
    EXPECT_EQ(kt::ktLog::msInstance.load(), before);
}

}  // namespace
}  // namespace ktannot
