#include "tools/ktannot/files/OutputFile.h"

#include "tools/ktannot/files/OutputFolder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <system_error>

namespace ktannot {

namespace {

std::string describe(const char* what, int error) {
    return std::string(what) + ": " + std::generic_category().message(error);
}

std::string getFolderOf(const std::string& path) { return path.substr(0, path.rfind('/') + 1); }

/// Renames, but not over a file that exists. As rename(), with errno EEXIST then.
int renameToNewName(int folder, const char* from, const char* to) {
    const int result = renameat2(folder, from, folder, to, RENAME_NOREPLACE);
    if (result == 0 || (errno != EINVAL && errno != ENOSYS)) {
        return result;
    }
    // File systems without that operation: the small gap between the question and the rename is theirs.
    if (faccessat(folder, to, F_OK, AT_SYMLINK_NOFOLLOW) == 0) {
        errno = EEXIST;
        return -1;
    }
    return renameat(folder, from, folder, to);
}

}  // namespace

OutputFile::OutputFile(const std::string& path)
    : mName(path.substr(path.rfind('/') + 1)), mFolder(OutputFolder::open(getFolderOf(path), mFailure)) {
    create();
}

OutputFile::OutputFile(const std::string& root, const std::string& below)
    : mName(below.substr(below.rfind('/') + 1)), mFolder(OutputFolder::openBelow(root, getFolderOf(below), mFailure)) {
    create();
}

OutputFile::~OutputFile() {
    if (mIsOnDisk) {
        unlinkat(mFolder.get(), mTemporaryName.c_str(), 0);
    }
}

void OutputFile::create() {
    static std::atomic<unsigned int> sCounter{0};
    if (!mFolder.isOpen()) {
        return;
    }
    OutputFolder::clean(mFolder);
    // A name may be left over from a killed process that had the same number; the next one is tried then.
    do {
        mTemporaryName = OutputFolder::sTemporaryPrefix + std::to_string(getpid()) + "-" + std::to_string(++sCounter);
        mFile = FileDescriptor(
            openat(mFolder.get(), mTemporaryName.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666));
    } while (mFile.isOpen() ? !isOwned() : errno == EEXIST);
    mIsOnDisk = mFile.isOpen();
    if (!mIsOnDisk) {
        mFailure = describe("cannot create a file in the folder", errno);
    }
}

bool OutputFile::isOwned() const {
    // Another run may have taken it for a left-over one before it was locked.
    struct stat status {};
    const bool isTaken = flock(mFile.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    return !isTaken && fstat(mFile.get(), &status) == 0 && status.st_nlink != 0;
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

std::string OutputFile::finishContent(bool isDurable) const {
    if (isDurable && fsync(mFile.get()) != 0) {
        return describe("cannot write", errno);
    }
    // A late failure of the disk shows when a descriptor of the file is closed, and must show before the rename. The
    // other one keeps the lock.
    const int other = fcntl(mFile.get(), F_DUPFD_CLOEXEC, 0);
    return other < 0 || close(other) != 0 ? describe("cannot write", errno) : std::string();
}

std::string OutputFile::publish(Existing existing, bool isDurable) {
    if (std::string failure = finishContent(isDurable); !failure.empty()) {
        return failure;
    }
    const char* from = mTemporaryName.c_str();
    const int result = existing == Existing::Replace ? renameat(mFolder.get(), from, mFolder.get(), mName.c_str())
                                                     : renameToNewName(mFolder.get(), from, mName.c_str());
    if (result != 0) {
        return errno == EEXIST ? std::string(sExistsAlready) : describe("cannot rename the temporary file", errno);
    }
    mIsOnDisk = false;
    if (isDurable) {
        const FileDescriptor folder(openat(mFolder.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (!folder.isOpen() || fsync(folder.get()) != 0) {
            return describe("cannot bring the folder to the disk", errno);
        }
    }
    return {};
}

}  // namespace ktannot
