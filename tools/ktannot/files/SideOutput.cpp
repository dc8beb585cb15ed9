#include "tools/ktannot/files/SideOutput.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace ktannot {

namespace {

/// The open descriptor that a path like "/dev/fd/3" names; below 0 for other paths. Opening such a name anew would lose
/// the place in the file that is behind it.
int getNamedDescriptor(std::string_view path) {
    if (path == "-" || path == "/dev/stdout") {
        return STDOUT_FILENO;
    }
    if (path == "/dev/stderr") {
        return STDERR_FILENO;
    }
    int descriptor = -1;
    for (const std::string_view folder : {"/dev/fd/", "/proc/self/fd/"}) {
        if (path.starts_with(folder)) {
            const char* end = path.data() + path.size();
            const auto [parsed, error] = std::from_chars(path.data() + folder.size(), end, descriptor);
            return error == std::errc() && parsed == end ? descriptor : -1;
        }
    }
    return -1;
}

bool isSpecial(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode);
}

}  // namespace

bool SideOutput::isStandardOutput(const std::string& path) { return getNamedDescriptor(path) == STDOUT_FILENO; }

SideOutput::SideOutput(const std::string& path, Way way) {
    if (const int named = getNamedDescriptor(path); named >= 0) {
        mDescriptor = FileDescriptor(fcntl(named, F_DUPFD_CLOEXEC, 0));
    } else if (isSpecial(path)) {
        mDescriptor = FileDescriptor(open(path.c_str(), O_WRONLY | O_NOCTTY | O_CLOEXEC));
    } else {
        std::error_code error;
        const std::filesystem::path file = std::filesystem::weakly_canonical(path, error);
        const std::string followed = error ? path : file.string();
        if (way == Way::Whole) {
            mWhole = std::make_unique<OutputFile>(followed);
            mFailure = mWhole->getFailure();
            return;
        }
        std::filesystem::create_directories(std::filesystem::path(followed).parent_path(), error);
        const int flags = O_WRONLY | O_CREAT | O_CLOEXEC | (way == Way::Append ? O_APPEND : O_TRUNC);
        mDescriptor = FileDescriptor(open(followed.c_str(), flags, 0666));
    }
    if (!mDescriptor.isOpen()) {
        mFailure = "cannot be opened for writing: " + std::generic_category().message(errno);
    }
}

std::string SideOutput::publish() {
    if (mWhole != nullptr) {
        return mWhole->publish(OutputFile::Existing::Replace);
    }
    const int result = close(mDescriptor.release());
    return result == 0 ? std::string() : "cannot write: " + std::generic_category().message(errno);
}

}  // namespace ktannot
