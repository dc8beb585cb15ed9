#include "tools/ktannot/files/OutputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <utility>

namespace ktannot {

namespace {

std::string describe(const char* what, int error) {
    return std::string(what) + ": " + std::generic_category().message(error);
}

/// Renames, but not over a file that exists. As rename(), with errno EEXIST then.
int renameToNewName(const char* from, const char* to) {
    const int result = renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE);
    if (result == 0 || (errno != EINVAL && errno != ENOSYS)) {
        return result;
    }
    // File systems without that operation: the small gap between the question and the rename is theirs.
    if (access(to, F_OK) == 0) {
        errno = EEXIST;
        return -1;
    }
    return rename(from, to);
}

}  // namespace

OutputFile::OutputFile(std::string path) : mPath(std::move(path)) {
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::path(mPath).parent_path();
    if (!folder.empty()) {
        std::filesystem::create_directories(folder, error);
    }
    if (error) {
        mFailure = "cannot create the folder: " + error.message();
        return;
    }
    create();
}

OutputFile::~OutputFile() {
    if (mIsOnDisk) {
        unlink(mTemporaryPath.c_str());
    }
}

void OutputFile::create() {
    static std::atomic<unsigned int> sCounter{0};
    const std::string prefix = mPath.substr(0, mPath.rfind('/') + 1) + ".ktannot-" + std::to_string(getpid()) + "-";
    // A name may be left over from a killed process that had the same number; the next one is tried then.
    do {
        mTemporaryPath = prefix + std::to_string(++sCounter);
        mFile =
            FileDescriptor(open(mTemporaryPath.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666));
    } while (!mFile.isOpen() && errno == EEXIST);
    mIsOnDisk = mFile.isOpen();
    if (!mIsOnDisk) {
        mFailure = describe("cannot create a file in the folder", errno);
    }
}

std::string OutputFile::write(std::string_view content) {
    while (!content.empty()) {
        const ssize_t count = ::write(mFile.get(), content.data(), content.size());
        if (count < 0 && errno != EINTR) {
            return describe("cannot write", errno);
        }
        content.remove_prefix(count > 0 ? static_cast<std::size_t>(count) : 0);
    }
    return {};
}

std::string OutputFile::publish(Existing existing) {
    // A late failure of the disk shows when the file is closed, and must show before the rename.
    if (close(mFile.release()) != 0) {
        return describe("cannot write", errno);
    }
    const int result = existing == Existing::Replace ? rename(mTemporaryPath.c_str(), mPath.c_str())
                                                     : renameToNewName(mTemporaryPath.c_str(), mPath.c_str());
    if (result != 0) {
        return errno == EEXIST ? std::string(sExistsAlready) : describe("cannot rename the temporary file", errno);
    }
    mIsOnDisk = false;
    return {};
}

}  // namespace ktannot
