#include "tools/ktannot/console/TextOutput.h"

#include <unistd.h>

#include <cerrno>

namespace ktannot {

bool TextOutput::flush() {
    std::string_view rest = mText;
    while (mDescriptor >= 0 && mError == 0 && !rest.empty()) {
        const ssize_t count = ::write(mDescriptor, rest.data(), rest.size());
        if (count >= 0) {
            rest.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            mError = errno;
        }
    }
    if (mDescriptor >= 0) {
        mText.clear();
    }
    return mError == 0;
}

}  // namespace ktannot
