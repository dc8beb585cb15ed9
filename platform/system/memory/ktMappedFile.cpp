#include "platform/system/memory/ktMappedFile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <system_error>
#include <utility>

namespace kt {

namespace {

/// A descriptor that is closed at the end.
class Descriptor {
public:
    explicit Descriptor(int value) : mValue(value) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (mValue >= 0) {
            ::close(mValue);
        }
    }

    int get() const { return mValue; }

private:
    int mValue;
};

/// Memory of whole pages, all zero; released at the end unless taken.
class Pages {
public:
    Pages() = default;
    Pages(const Pages&) = delete;
    Pages& operator=(const Pages&) = delete;
    ~Pages() {
        if (mMemory != nullptr) {
            ::munmap(mMemory, mSize);
        }
    }

    bool allocate(std::size_t size) {
        void* memory = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        return hold(memory, size);
    }
    bool grow(std::size_t size) { return hold(::mremap(mMemory, mSize, size, MREMAP_MAYMOVE), size); }

    std::byte* get() const { return static_cast<std::byte*>(mMemory); }
    std::size_t getSize() const { return mSize; }
    std::byte* take() { return static_cast<std::byte*>(std::exchange(mMemory, nullptr)); }

private:
    bool hold(void* memory, std::size_t size) {
        if (memory == MAP_FAILED) {
            return false;
        }
        mMemory = memory;
        mSize = size;
        return true;
    }

    void* mMemory = nullptr;
    std::size_t mSize = 0;
};

/// Maps the first size bytes of a file, with zeros behind.
bool mapFile(int descriptor, std::size_t size, Pages& pages) {
    const auto pageSize = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    const std::size_t roundedSize = (size + ktMappedFile::sPadding + pageSize - 1) / pageSize * pageSize;
    // The zero pages come first, and the file is laid over all but the padding.
    return pages.allocate(roundedSize) &&
           ::mmap(pages.get(), size, PROT_READ, MAP_PRIVATE | MAP_FIXED, descriptor, 0) != MAP_FAILED;
}

/// Reads a file to its end.
bool readFile(int descriptor, Pages& pages, std::size_t& size) {
    constexpr std::size_t sFirstSize = std::size_t{1} << 16;
    if (!pages.allocate(sFirstSize)) {
        return false;
    }
    for (size = 0;;) {
        if (size > ktMappedFile::sMaxPipeSize) {
            errno = EFBIG;
            return false;
        }
        if (size + ktMappedFile::sPadding >= pages.getSize() && !pages.grow(pages.getSize() * 2)) {
            return false;
        }
        const std::size_t room = pages.getSize() - ktMappedFile::sPadding - size;
        const ssize_t count = ::read(descriptor, pages.get() + size, room);
        if (count == 0) {
            return true;
        }
        if (count < 0 && errno != EINTR) {
            return false;
        }
        size += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    }
}

/// Copies the first size bytes of a file; size becomes what there was.
bool copyFile(int descriptor, Pages& pages, std::size_t& size) {
    if (!pages.allocate(size + ktMappedFile::sPadding)) {
        return false;
    }
    std::size_t done = 0;
    while (done < size) {
        const ssize_t count = ::pread(descriptor, pages.get() + done, size - done, static_cast<off_t>(done));
        if (count < 0 && errno != EINTR) {
            return false;
        }
        if (count == 0) {
            break;
        }
        done += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    }
    size = done;
    return true;
}

/// Whether a good part of the file takes no place on the disk: a copy would take far more memory than the file did.
bool hasHoles(const struct stat& status) {
    constexpr off_t sBlockSize = 512;
    constexpr off_t sTolerance = 1 << 20;
    return status.st_blocks * sBlockSize + sTolerance < status.st_size;
}

bool isSameState(const struct stat& a, const struct stat& b) {
    return a.st_size == b.st_size && a.st_mtim.tv_sec == b.st_mtim.tv_sec && a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

bool failWithErrno(std::string& error) {
    error = std::generic_category().message(errno);
    return false;
}

}  // namespace

ktMappedFile::~ktMappedFile() {
    if (mBytes != nullptr) {
        ::munmap(mBytes, mMappedSize);
    }
}

void ktMappedFile::swap(ktMappedFile& other) noexcept {
    std::swap(mBytes, other.mBytes);
    std::swap(mSize, other.mSize);
    std::swap(mMappedSize, other.mMappedSize);
    std::swap(mHasChanged, other.mHasChanged);
}

bool ktMappedFile::open(const std::string& path, std::string& error, Access access) {
    *this = ktMappedFile();
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    return file.get() < 0 ? failWithErrno(error) : open(file.get(), error, access);
}

bool ktMappedFile::open(int descriptor, std::string& error, Access access) {
    *this = ktMappedFile();
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) {
        return failWithErrno(error);
    }
    Pages pages;
    auto size = static_cast<std::size_t>(status.st_size);
    // Some special files say that they are empty.
    const bool isMappable = S_ISREG(status.st_mode) && size != 0;
    if (!isMappable) {
        if (!readFile(descriptor, pages, size)) {
            return failWithErrno(error);
        }
    } else if (access == Access::Map || hasHoles(status)) {
        if (!mapFile(descriptor, size, pages)) {
            return failWithErrno(error);
        }
    } else {
        struct stat after {};
        if (!copyFile(descriptor, pages, size) || ::fstat(descriptor, &after) != 0) {
            return failWithErrno(error);
        }
        mHasChanged = !isSameState(status, after) || size != static_cast<std::size_t>(status.st_size);
    }
    mMappedSize = pages.getSize();
    mSize = size;
    mBytes = pages.take();
    return true;
}

}  // namespace kt
