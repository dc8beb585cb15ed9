#include "platform/system/log/ktBundledLog_p.h"

#include <spdlog/sinks/stdout_sinks.h>
#include <spdlog/sinks/syslog_sink.h>
#include <spdlog/spdlog.h>
#include <syslog.h>

#include <chrono>

namespace kt {

namespace {

spdlog::level::level_enum toLevel(int type) {
    switch (type) {
        case ktLog::Debug:
            return spdlog::level::debug;
        case ktLog::Info:
        case ktLog::Notice:
            return spdlog::level::info;
        case ktLog::Warning:
            return spdlog::level::warn;
        default:
            return type < ktLog::Debug ? spdlog::level::trace : spdlog::level::err;
    }
}

void write(spdlog::logger& logger, const ktLogEntry& entry) noexcept {
    try {
        std::string text;
        if (!entry.mCategory.empty()) {
            text.append("[").append(entry.mCategory).append("] ");
        }
        text.append(entry.mMessage);
        if (!entry.mContext.empty()) {
            text.append(" (").append(entry.mContext).append(")");
        }
        const spdlog::log_clock::time_point time{std::chrono::milliseconds(entry.mMilliseconds)};
        logger.log(time, spdlog::source_loc{}, toLevel(entry.mType), spdlog::string_view_t(text));
    } catch (...) {
        // Logging never fails its caller; a line that cannot be written is lost.
    }
}

}  // namespace

ktBundledLog::ktBundledLog()
    : mLogger(std::make_shared<spdlog::logger>("kt", std::make_shared<spdlog::sinks::stderr_sink_mt>())) {
    mLogger->set_level(spdlog::level::warn);
    mLogger->set_pattern("[%Y-%m-%d %H:%M:%S.%e] [%l] %v");
}

void ktBundledLog::log(const ktLogEntry& entry) noexcept { write(*mLogger, entry); }

bool ktBundledLog::isEnabled(int type) const { return type >= Warning; }

void writeToSystemLog(const ktLogEntry& entry) noexcept {
    try {
        static spdlog::logger& logger =
            *new spdlog::logger("kt", std::make_shared<spdlog::sinks::syslog_sink_mt>("kt", LOG_PID, LOG_USER, false));
        write(logger, entry);
    } catch (...) {
        // As above: the line is lost.
    }
}

}  // namespace kt
