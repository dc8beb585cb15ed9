#include "platform/system/log/ktLogObject.h"

#include "platform/system/log/ktBundledLog_p.h"

#include <array>
#include <charconv>
#include <chrono>

namespace kt {

ktLogObject::ktLogObject(int type, const char* category, ktLog* logger, const char* context, bool toSystemLog)
    : mLogger(logger != nullptr && logger->isEnabled(type) ? logger : nullptr), mToSystemLog(toSystemLog) {
    if (!isWanted()) {
        return;
    }
    using std::chrono::system_clock;
    const auto sinceEpoch = system_clock::now().time_since_epoch();
    mEntry.mMilliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(sinceEpoch).count();
    mEntry.mType = type;
    if (category != nullptr) {
        mEntry.mCategory = category;
    }
    if (context != nullptr) {
        mEntry.mContext = context;
    }
}

ktLogObject::~ktLogObject() {
    if (mToSystemLog) {
        writeToSystemLog(mEntry);
    }
    if (mLogger != nullptr) {
        if (mLogger->wantsThreadId()) {
            mEntry.mThreadId = std::this_thread::get_id();
        }
        mLogger->log(mEntry);
    }
}

ktLogObject& ktLogObject::operator<<(std::string_view text) {
    if (isWanted()) {
        mEntry.mMessage += text;
    }
    return *this;
}

ktLogObject& ktLogObject::operator<<(const char* text) {
    return *this << (text != nullptr ? std::string_view(text) : std::string_view("[NullPtr]"));
}

ktLogObject& ktLogObject::operator<<(char character) { return *this << std::string_view(&character, 1); }

ktLogObject& ktLogObject::operator<<(double number) {
    std::array<char, 32> text{};
    const auto result = std::to_chars(text.data(), text.data() + text.size(), number);
    return *this << std::string_view(text.data(), static_cast<std::size_t>(result.ptr - text.data()));
}

}  // namespace kt
