#include "tools/ktannot/files/OutputFolder.h"

#include "tools/ktannot/files/FileIdentity.h"

#include <dirent.h>
#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include <cerrno>
#include <charconv>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <string_view>
#include <system_error>

namespace ktannot {

namespace {

constexpr mode_t sMode = 0777;

std::string describe(const char* what, int error) {
    return std::string(what) + ": " + std::generic_category().message(error);
}

/// Opens a folder below root without leaving root.
FileDescriptor openBeneath(int root, const std::string& below) {
    open_how how{};
    how.flags = O_PATH | O_DIRECTORY | O_CLOEXEC;
    how.resolve = RESOLVE_BENEATH | RESOLVE_NO_MAGICLINKS;
    const auto opened = static_cast<int>(syscall(SYS_openat2, root, below.c_str(), &how, sizeof(how)));
    if (opened >= 0 || errno != ENOSYS) {
        return FileDescriptor(opened);
    }
    // Kernels without that call: one component after the other, and no links at all.
    FileDescriptor folder(openat(root, ".", O_PATH | O_DIRECTORY | O_CLOEXEC));
    for (const std::filesystem::path& part : std::filesystem::path(below)) {
        folder = FileDescriptor(openat(folder.get(), part.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    }
    return folder;
}

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

void removeTemporaries(int folder, const std::function<bool(const char* name, int process)>& isChosen) {
    const int listed = openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const std::unique_ptr<DIR, CloseFolder> entries(listed >= 0 ? fdopendir(listed) : nullptr);
    while (const dirent* entry = entries != nullptr ? readdir(entries.get()) : nullptr) {
        std::string_view name = entry->d_name;
        if (!name.starts_with(OutputFolder::sTemporaryPrefix)) {
            continue;
        }
        name.remove_prefix(std::string_view(OutputFolder::sTemporaryPrefix).size());
        int process = 0;
        std::from_chars(name.data(), name.data() + name.size(), process);
        if (process > 0 && isChosen(entry->d_name, process)) {
            unlinkat(folder, entry->d_name, 0);
        }
    }
}

}  // namespace

FileDescriptor OutputFolder::open(const std::string& path, std::string& failure) {
    std::error_code error;
    std::filesystem::create_directories(path.empty() ? "." : path, error);
    FileDescriptor folder(::open(path.empty() ? "." : path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!folder.isOpen()) {
        failure = "cannot create the folder: " + (error ? error.message() : std::generic_category().message(errno));
    }
    return folder;
}

FileDescriptor OutputFolder::openBelow(const std::string& root, const std::string& below, std::string& failure) {
    FileDescriptor top = open(root, failure);
    if (!top.isOpen() || below.empty()) {
        return top;
    }
    FileDescriptor folder = openBeneath(top.get(), below);
    if (!folder.isOpen() && errno == ENOENT) {
        folder = std::move(top);
        const FileDescriptor start(openat(folder.get(), ".", O_PATH | O_DIRECTORY | O_CLOEXEC));
        std::string path;
        for (const std::filesystem::path& part : std::filesystem::path(below)) {
            path += path.empty() ? part.string() : "/" + part.string();
            mkdirat(folder.get(), part.c_str(), sMode);
            const int made = errno;
            folder = openBeneath(start.get(), path);
            if (!folder.isOpen()) {
                errno = errno == ENOENT ? made : errno;
                break;
            }
        }
    }
    if (!folder.isOpen()) {
        failure = errno == EXDEV || errno == ELOOP ? "a link leads out of the output folder, which is not followed"
                                                   : describe("cannot create the folder", errno);
    }
    return folder;
}

void OutputFolder::clean(const FileDescriptor& folder) {
    static std::mutex sMutex;
    static std::set<FileIdentity> sCleaned;
    struct stat status {};
    {
        const std::lock_guard lock(sMutex);
        if (fstat(folder.get(), &status) != 0 || !sCleaned.insert(FileIdentity::of(status)).second) {
            return;
        }
    }
    removeTemporaries(folder.get(), [&folder](const char* name, int /*process*/) {
        // Whoever writes to it holds its lock, on this computer or another.
        const FileDescriptor file(openat(folder.get(), name, O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK));
        return file.isOpen() && flock(file.get(), LOCK_EX | LOCK_NB) == 0;
    });
}

void OutputFolder::removeLeftOvers(const std::string& path, int process) {
    const FileDescriptor folder(::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (folder.isOpen()) {
        removeTemporaries(folder.get(), [process](const char* /*name*/, int owner) { return owner == process; });
    }
}

}  // namespace ktannot
