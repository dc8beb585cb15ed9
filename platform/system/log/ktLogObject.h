#pragma once

/// @file
/// Builder of one log line.

#include "platform/system/log/ktLog.h"

#include <string>
#include <string_view>
#include <type_traits>

namespace kt {

/// Collects a message with operator<< and writes it when it is destroyed:
///
///     ktLogObject(5, nullptr, ktLog::msInstance, nullptr, false) << "Fail to retrieve raster '" << name << "'";
class KT_SYSTEM_API ktLogObject {
public:
    /// @param type         log type of the line.
    /// @param category     category text, may be null.
    /// @param logger       where the line goes, null: nowhere.
    /// @param context      context text, may be null.
    /// @param toSystemLog  also write the line to the operating system's log.
    ktLogObject(int type, const char* category, ktLog* logger, const char* context, bool toSystemLog);
    ktLogObject(const ktLogObject&) = delete;
    ktLogObject& operator=(const ktLogObject&) = delete;
    ~ktLogObject();

    ktLogObject& operator<<(std::string_view text);
    /// A null text is written as "[NullPtr]".
    ktLogObject& operator<<(const char* text);
    ktLogObject& operator<<(char character);
    ktLogObject& operator<<(double number);
    template <typename Integer>
    requires std::is_integral_v<Integer> ktLogObject& operator<<(Integer number) {
        return *this << std::string_view(std::to_string(number));
    }

private:
    bool isWanted() const { return mLogger != nullptr || mToSystemLog; }

    ktLogEntry mEntry;
    ktLog* mLogger;  ///< null when nobody keeps lines of this type
    bool mToSystemLog;
};

}  // namespace kt
