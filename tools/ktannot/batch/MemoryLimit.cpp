#include "tools/ktannot/batch/MemoryLimit.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdio>

namespace ktannot {

namespace {

constexpr std::uint64_t sMiB = std::uint64_t{1024} * 1024;
/// Fonts and their caches, which stay for the documents that follow.
constexpr std::uint64_t sFonts = 64 * sMiB;
/// For documents that do not tell their size.
constexpr std::uint64_t sDefaultOfPipes = 2048 * sMiB;

std::uint64_t getDefault(const std::string& path) {
    struct stat status {};
    if (path.empty() || stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return sDefaultOfPipes;
    }
    return 64 * sMiB + 64 * static_cast<std::uint64_t>(status.st_size);
}

void setLimit(rlim_t soft) {
    struct rlimit limit {};
    getrlimit(RLIMIT_DATA, &limit);
    limit.rlim_cur = soft < limit.rlim_max ? soft : limit.rlim_max;
    setrlimit(RLIMIT_DATA, &limit);
}

}  // namespace

MemoryLimit::MemoryLimit(std::optional<std::uint64_t> limit)
    : mLimit(limit), mStatus(open("/proc/self/statm", O_RDONLY | O_CLOEXEC)) {}

void MemoryLimit::begin(const std::string& path) {
    if (const std::uint64_t used = getUsed(); used != 0) {
        setLimit(used + sFonts + mLimit.value_or(getDefault(path)));
    }
}

void MemoryLimit::end() { setLimit(RLIM_INFINITY); }

std::uint64_t MemoryLimit::getUsed() const {
    std::array<char, 256> text{};
    unsigned long long pages = 0;
    if (pread(mStatus.get(), text.data(), text.size() - 1, 0) <= 0 ||
        std::sscanf(text.data(), "%*s %*s %*s %*s %*s %llu", &pages) != 1) {
        return 0;
    }
    return pages * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
}

}  // namespace ktannot
