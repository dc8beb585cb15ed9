#include "platform/system/log/ktLog.h"

#include "platform/system/log/ktBundledLog_p.h"

namespace kt {

std::atomic<ktLog*> ktLog::msInstance{&ktLog::getBundledLog()};

ktLog& ktLog::getBundledLog() {
    // Never destroyed: static objects of other libraries may write their last lines to it.
    static ktLog& log = *new ktBundledLog;
    return log;
}

ktLog::~ktLog() = default;

bool ktLog::isEnabled(int /*type*/) const { return true; }

}  // namespace kt
