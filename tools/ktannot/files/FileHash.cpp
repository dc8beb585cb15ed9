#include "tools/ktannot/files/FileHash.h"

#include "platform/encoding/Sha256.h"
#include "tools/ktannot/files/FileDescriptor.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <vector>

namespace ktannot {

std::string hashFile(const std::string& path) {
    const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    kt::encoding::Sha256 hash;
    std::vector<char> piece(std::size_t{64} * 1024);
    while (file.isOpen()) {
        const ssize_t count = read(file.get(), piece.data(), piece.size());
        if (count == 0) {
            return hash.finish();
        }
        if (count < 0 && errno != EINTR) {
            break;
        }
        hash.add(std::string_view(piece.data(), count > 0 ? static_cast<std::size_t>(count) : 0));
    }
    return {};
}

}  // namespace ktannot
