#include "tools/ktannot/files/OutputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <mutex>
#include <system_error>
#include <unordered_set>
#include <utility>

namespace ktannot {

namespace {

std::string describe(const char* what, int error) {
    return std::string(what) + ": " + std::generic_category().message(error);
}

/// What the names of temporary files begin with: the computer and its group of processes, whose numbers tell which
/// files nobody works on any more. Several computers may write into one folder.
const std::string& getPrefix() {
    static const std::string sPrefix = [] {
        std::array<char, 256> name{};
        gethostname(name.data(), name.size() - 1);
        struct stat processes {};
        stat("/proc/self/ns/pid", &processes);
        const std::size_t place = std::hash<std::string>()(name.data()) ^ processes.st_ino;
        return ".ktannot-" + std::to_string(place % 1'000'000'007) + "-";
    }();
    return sPrefix;
}

/// Removes this computer's temporary files of the processes chosen.
void removeTemporaries(const std::string& folder, const std::function<bool(int process)>& isChosen) {
    std::error_code error;
    std::filesystem::directory_iterator entry(folder.empty() ? "." : folder, error);
    while (!error && entry != std::filesystem::directory_iterator()) {
        const std::string name = entry->path().filename().string();
        int process = 0;
        if (name.starts_with(getPrefix())) {
            std::from_chars(name.data() + getPrefix().size(), name.data() + name.size(), process);
            if (process > 0 && isChosen(process)) {
                unlink(entry->path().c_str());
            }
        }
        entry.increment(error);
    }
}

/// Whether a process has ended, perhaps without anybody having asked how.
bool isGone(int process) {
    if (kill(process, 0) != 0) {
        return errno == ESRCH;
    }
    std::string status;
    std::getline(std::ifstream("/proc/" + std::to_string(process) + "/stat"), status);
    const std::size_t name = status.rfind(") ");
    return name != std::string::npos && (status[name + 2] == 'Z' || status[name + 2] == 'X');
}

/// Removes what killed runs left in a folder, once.
void clean(const std::string& folder) {
    static std::mutex sMutex;
    static std::unordered_set<std::size_t> sCleaned;
    {
        const std::lock_guard lock(sMutex);
        if (!sCleaned.insert(std::hash<std::string>()(folder)).second) {
            return;
        }
    }
    removeTemporaries(folder, isGone);
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
    const bool isNew = !folder.empty() && std::filesystem::create_directories(folder, error);
    if (error) {
        mFailure = "cannot create the folder: " + error.message();
        return;
    }
    if (!isNew) {
        clean(folder.string());
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
    const std::string folder = mPath.substr(0, mPath.rfind('/') + 1);
    const std::string prefix = folder + getPrefix() + std::to_string(getpid()) + "-";
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

void OutputFile::removeLeftOvers(const std::string& folder, int process) {
    removeTemporaries(folder, [process](int owner) { return owner == process; });
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
