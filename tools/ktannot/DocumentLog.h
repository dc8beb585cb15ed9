#pragma once

/// @file
/// Log lines by document.

#include "platform/system/log/ktLog.h"

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace ktannot {

/// The process's log while the tool runs: lines go to the capture that is open on the thread that writes them, so that
/// documents that are worked on at the same time keep their lines apart. One object at a time.
class DocumentLog : public kt::ktLog {
public:
    struct Line {
        int mType = 0;
        std::string mMessage;  ///< may hold bytes of the document
    };

    /// Collects the lines of the thread that makes it, until it is destroyed on that thread. The innermost capture of a
    /// thread gets the lines.
    class Capture {
    public:
        Capture();
        Capture(const Capture&) = delete;
        Capture& operator=(const Capture&) = delete;
        ~Capture();

        /// In order.
        const std::vector<Line>& getLines() const { return mLines; }
        std::vector<Line> takeLines() { return std::exchange(mLines, {}); }

    private:
        friend class DocumentLog;

        Capture* mOuter;
        std::vector<Line> mLines;
    };

    /// Takes the place of the current log, which gets the lines of threads without a capture.
    DocumentLog();
    ~DocumentLog() override;

    /// Keeps lines from that type on; Warning at first.
    void setThreshold(int type) { mThreshold.store(type); }
    /// Also hands every line that is kept to the listener, one at a time, from the thread that wrote it. The listener
    /// must not throw.
    void setListener(std::function<void(const kt::ktLogEntry& entry)> listener);

    void log(const kt::ktLogEntry& entry) noexcept override;
    bool isEnabled(int type) const override { return type >= mThreshold.load(); }

private:
    kt::ktLog* mReplaced;
    std::atomic<int> mThreshold{Warning};
    std::mutex mListenerMutex;
    std::function<void(const kt::ktLogEntry&)> mListener;
};

}  // namespace ktannot
