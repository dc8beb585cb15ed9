#pragma once

/// @file
/// The log that is used unless the host sets its own.

#include "platform/system/log/ktLog.h"

#include <memory>

namespace spdlog {
class logger;
}

namespace kt {

/// Writes warnings and errors to standard error.
class ktBundledLog final : public ktLog {
public:
    ktBundledLog();

    void log(const ktLogEntry& entry) noexcept override;
    bool isEnabled(int type) const override;

private:
    std::shared_ptr<spdlog::logger> mLogger;
};

/// Writes an entry to the operating system's log.
void writeToSystemLog(const ktLogEntry& entry) noexcept;

}  // namespace kt
