#include "tools/ktannot/OutputFile.h"

#include "tools/ktannot/FileDescriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

namespace ktannot {

namespace {

std::string describe(const char* what, int error) {
    return std::string(what) + ": " + std::generic_category().message(error);
}

/// A file beside the final one that vanishes unless it is published.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::string& finalPath) {
        static std::atomic<unsigned int> sCounter{0};
        const std::string prefix =
            finalPath.substr(0, finalPath.rfind('/') + 1) + ".ktannot-" + std::to_string(getpid()) + "-";
        // A name may be left over from a killed process that had the same number; the next one is tried then.
        do {
            mPath = prefix + std::to_string(++sCounter);
            mFile = FileDescriptor(open(mPath.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666));
        } while (!mFile.isOpen() && errno == EEXIST);
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        if (mIsOnDisk && !mPath.empty()) {
            unlink(mPath.c_str());
        }
    }

    bool isOpen() {
        mIsOnDisk = mFile.isOpen();
        return mIsOnDisk;
    }

    std::string write(std::string_view content) const {
        while (!content.empty()) {
            const ssize_t count = ::write(mFile.get(), content.data(), content.size());
            if (count < 0 && errno != EINTR) {
                return describe("cannot write", errno);
            }
            content.remove_prefix(count > 0 ? static_cast<std::size_t>(count) : 0);
        }
        return {};
    }

    /// Gives the file its final name.
    std::string publish(const std::string& finalPath, OutputFile::Existing existing) {
        // A late failure of the disk shows when the file is closed, and must show before the rename.
        if (close(mFile.release()) != 0) {
            return describe("cannot write", errno);
        }
        const unsigned int flags = existing == OutputFile::Existing::Keep ? RENAME_NOREPLACE : 0U;
        int result = renameat2(AT_FDCWD, mPath.c_str(), AT_FDCWD, finalPath.c_str(), flags);
        if (result != 0 && flags != 0 && (errno == EINVAL || errno == ENOSYS)) {
            // File systems without that operation: the small gap between the question and the rename is theirs.
            result =
                access(finalPath.c_str(), F_OK) == 0 ? (errno = EEXIST, -1) : rename(mPath.c_str(), finalPath.c_str());
        }
        if (result != 0) {
            return errno == EEXIST ? std::string(OutputFile::sExistsAlready)
                                   : describe("cannot rename the temporary file", errno);
        }
        mIsOnDisk = false;
        return {};
    }

private:
    std::string mPath;
    FileDescriptor mFile;
    bool mIsOnDisk = false;
};

}  // namespace

std::string OutputFile::createFolders(const std::string& path) {
    std::error_code error;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path(), error);
    return error ? "cannot create the folder: " + error.message() : std::string();
}

std::string OutputFile::write(const std::string& path, std::string_view content, Existing existing) {
    TemporaryFile file(path);
    if (!file.isOpen()) {
        return describe("cannot create a temporary file beside it", errno);
    }
    if (std::string failure = file.write(content); !failure.empty()) {
        return failure;
    }
    return file.publish(path, existing);
}

}  // namespace ktannot
