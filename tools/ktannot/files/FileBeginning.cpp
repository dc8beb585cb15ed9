#include "tools/ktannot/files/FileBeginning.h"

#include "tools/ktannot/files/FileDescriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ktannot {

std::string readBeginning(const std::string& path) {
    std::string bytes(256, '\0');
    // Not blocking: a pipe of that name must not hang the tool.
    const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    ssize_t count = 0;
    if (file.isOpen() && fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode)) {
        count = read(file.get(), bytes.data(), bytes.size());
    }
    bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return bytes;
}

}  // namespace ktannot
