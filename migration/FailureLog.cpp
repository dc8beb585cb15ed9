#include "migration/FailureLog_p.h"
#include "platform/system/log/ktLogObject.h"

#include <utility>

namespace ktLegacy::migration {

FailureLog::Line::~Line() {
    kt::ktLogObject(kt::ktLog::Error, nullptr, kt::ktLog::msInstance.load(), nullptr, false) << mText;
    mLog.mLines.push_back({mCode, std::move(mText)});
}

}  // namespace ktLegacy::migration
