#include "tools/ktannot/batch/Sandbox.h"

#include "tools/ktannot/files/FileDescriptor.h"

#include <fcntl.h>
#include <fontconfig/fontconfig.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/landlock.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace ktannot {

namespace {

// Rights that later kernels know; the headers may be older than the kernel.
constexpr std::uint64_t sRefer = std::uint64_t{1} << 13;
constexpr std::uint64_t sTruncate = std::uint64_t{1} << 14;
constexpr std::uint64_t sIoctl = std::uint64_t{1} << 15;
constexpr std::uint64_t sTcp = 3;     ///< binding and connecting
constexpr std::uint64_t sScopes = 3;  ///< abstract sockets and signals

constexpr std::uint64_t sReading = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_READ_DIR;
// Without the right to remove folders, a folder in the way of a file would be told as missing permission.
constexpr std::uint64_t sWriting = sReading | LANDLOCK_ACCESS_FS_WRITE_FILE | LANDLOCK_ACCESS_FS_REMOVE_FILE |
                                   LANDLOCK_ACCESS_FS_REMOVE_DIR | LANDLOCK_ACCESS_FS_MAKE_REG |
                                   LANDLOCK_ACCESS_FS_MAKE_DIR | sTruncate;
/// All rights of the first version.
constexpr std::uint64_t sFirst = (std::uint64_t{1} << 13) - 1;

struct Ruleset {
    std::uint64_t mFiles = 0;
    std::uint64_t mNetwork = 0;
    std::uint64_t mScopes = 0;
};

int getVersion() {
    return static_cast<int>(syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION));
}

Ruleset describeRuleset(int version) {
    Ruleset ruleset;
    ruleset.mFiles =
        sFirst | (version >= 2 ? sRefer : 0) | (version >= 3 ? sTruncate : 0) | (version >= 5 ? sIoctl : 0);
    ruleset.mNetwork = version >= 4 ? sTcp : 0;
    ruleset.mScopes = version >= 6 ? sScopes : 0;
    return ruleset;
}

/// Places that are not there need no rule.
void allow(int ruleset, const std::string& path, std::uint64_t rights) {
    const FileDescriptor place(open(path.c_str(), O_PATH | O_CLOEXEC));
    struct stat status {};
    if (!place.isOpen() || fstat(place.get(), &status) != 0) {
        return;
    }
    landlock_path_beneath_attr rule{};
    rule.parent_fd = place.get();
    rule.allowed_access = S_ISDIR(status.st_mode) ? rights : rights & ~std::uint64_t{LANDLOCK_ACCESS_FS_READ_DIR};
    syscall(SYS_landlock_add_rule, ruleset, LANDLOCK_RULE_PATH_BENEATH, &rule, 0);
}

/// The folders that the files of all fonts lie in, links followed, and what else fonts are chosen by.
std::set<std::string> findFontPlaces() {
    std::set<std::string> places{"/etc/fonts", "/usr/share", "/usr/lib", "/dev/null", "/dev/urandom"};
    FcConfig* config = FcConfigGetCurrent();
    const auto addAll = [&places](FcStrList* list) {
        for (FcChar8* path = list != nullptr ? FcStrListNext(list) : nullptr; path != nullptr;
             path = FcStrListNext(list)) {
            places.insert(reinterpret_cast<const char*>(path));
        }
        if (list != nullptr) {
            FcStrListDone(list);
        }
    };
    addAll(FcConfigGetFontDirs(config));
    addAll(FcConfigGetConfigFiles(config));
    addAll(FcConfigGetCacheDirs(config));
    for (const FcSetName kind : {FcSetSystem, FcSetApplication}) {
        const FcFontSet* fonts = FcConfigGetFonts(config, kind);
        for (int index = 0; fonts != nullptr && index < fonts->nfont; ++index) {
            FcChar8* file = nullptr;
            if (FcPatternGetString(fonts->fonts[index], FC_FILE, 0, &file) == FcResultMatch) {
                std::error_code error;
                places.insert(std::filesystem::canonical(reinterpret_cast<const char*>(file), error).parent_path());
            }
        }
    }
    return places;
}

#if defined(__x86_64__)
constexpr std::uint32_t sArchitecture = AUDIT_ARCH_X86_64;
#elif defined(__aarch64__)
constexpr std::uint32_t sArchitecture = AUDIT_ARCH_AARCH64;
#else
constexpr std::uint32_t sArchitecture = 0;
#endif

/// Refuses sockets, other programs and looking into other processes.
bool filterSystemCalls() {
    if (sArchitecture == 0) {
        return true;
    }
    constexpr std::array<std::uint32_t, 7> sRefused{
        SYS_socket, SYS_socketpair, SYS_execve, SYS_execveat, SYS_process_vm_readv, SYS_process_vm_writev, SYS_ptrace};
    // Calls of another architecture, or with the numbers of one, would pass a list of numbers.
    std::array<sock_filter, sRefused.size() + 6> program{{
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, arch)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, sArchitecture, 0, sRefused.size() + 3),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JGE | BPF_K, 0x40000000, sRefused.size() + 1, 0),
    }};
    for (std::size_t index = 0; index < sRefused.size(); ++index) {
        program[4 + index] = BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, sRefused[index],
                                      static_cast<unsigned char>(sRefused.size() - index), 0);
    }
    program[sRefused.size() + 4] = BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW);
    program[sRefused.size() + 5] = BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EPERM);
    const sock_fprog filter{static_cast<unsigned short>(program.size()), program.data()};
    return prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
}

}  // namespace

bool Sandbox::isSupported() { return getVersion() >= 1; }

bool Sandbox::enter(const Places& places) {
    const int version = getVersion();
    if (version < 1) {
        return false;
    }
    const Ruleset rights = describeRuleset(version);
    // An older kernel refuses members that it does not know.
    const std::size_t size = version >= 6 ? sizeof(Ruleset) : version >= 4 ? 16 : 8;
    const FileDescriptor ruleset(static_cast<int>(syscall(SYS_landlock_create_ruleset, &rights, size, 0)));
    if (!ruleset.isOpen()) {
        return false;
    }
    for (const std::string& path : places.mReadFolders) {
        allow(ruleset.get(), path, sReading);
    }
    for (const std::string& path : findFontPlaces()) {
        allow(ruleset.get(), path, sReading);
    }
    if (!places.mWriteFolder.empty()) {
        allow(ruleset.get(), places.mWriteFolder, sWriting & rights.mFiles);
    }
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && syscall(SYS_landlock_restrict_self, ruleset.get(), 0) == 0 &&
           filterSystemCalls();
}

}  // namespace ktannot
