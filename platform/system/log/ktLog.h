#pragma once

/// @file
/// The process-wide log.

#include "platform/system/ktSystemExport.h"

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

namespace kt {

/// One line of the log.
struct ktLogEntry {
    std::string mMessage;
    int mType = 0;
    std::int64_t mMilliseconds = 0;            ///< since the epoch, when the line was begun
    std::string mCategory;                     ///< empty when none was given
    std::string mContext;                      ///< empty when none was given
    std::optional<std::thread::id> mThreadId;  ///< when the log asks for it
};

/// Receives log lines. A host may put its own log in the place of the bundled one; log() may be called from several
/// threads at once and must not throw.
class KT_SYSTEM_API ktLog {
public:
    /// Log types. The migration writes at Error.
    enum Type : int { Debug = 1, Info = 2, Notice = 3, Warning = 4, Error = 5 };

    /// The log that all lines go to. Never null from the first use of libktSystem on; the pointed-to log belongs to
    /// whoever set it. A log that is destroyed while it is set, as one with static storage is at the end of the
    /// program, is replaced by the bundled log; no other thread may write a line at that moment.
    static std::atomic<ktLog*> msInstance;

    /// The bundled log: writes warnings and errors to standard error.
    static ktLog& getBundledLog();

    ktLog() = default;
    ktLog(const ktLog&) = delete;
    ktLog& operator=(const ktLog&) = delete;
    virtual ~ktLog();

    virtual void log(const ktLogEntry& entry) noexcept = 0;
    /// Whether entries should carry the id of the thread that wrote them.
    virtual bool wantsThreadId() const { return false; }
    /// Whether lines of that type are kept at all; callers may skip building others.
    virtual bool isEnabled(int type) const;
};

}  // namespace kt
