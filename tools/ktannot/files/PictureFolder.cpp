#include "tools/ktannot/files/PictureFolder.h"

#include "platform/encoding/Base64.h"
#include "platform/encoding/PictureKind.h"
#include "tools/ktannot/files/FileDescriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>

namespace ktannot {

namespace {

constexpr std::array<std::string_view, 6> sSuffixes{"", ".png", ".jpg", ".jpeg", ".gif", ".webp"};

bool isOnePathComponent(std::string_view name) {
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string_view::npos &&
           name.find('\0') == std::string_view::npos;
}

/// The content of a regular file; empty when it cannot be read whole or is too large.
std::string readRegularFile(int folder, const std::string& name) {
    // Not blocking: a pipe of that name must not hang the tool.
    const FileDescriptor file(openat(folder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (!file.isOpen() || fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_size <= 0 ||
        static_cast<std::size_t>(status.st_size) > PictureFolder::sMaxPictureSize) {
        return {};
    }
    std::string content(static_cast<std::size_t>(status.st_size), '\0');
    std::size_t filled = 0;
    while (filled < content.size()) {
        const ssize_t count = read(file.get(), content.data() + filled, content.size() - filled);
        if (count <= 0) {
            return {};
        }
        filled += static_cast<std::size_t>(count);
    }
    return content;
}

}  // namespace

const std::string* PictureFolder::find(const std::string& rasterName) {
    const auto [entry, isNew] = mDataUris.try_emplace(rasterName);
    if (isNew) {
        entry->second = readPicture(rasterName);
    }
    return entry->second.empty() ? nullptr : &entry->second;
}

bool PictureFolder::provide(const std::string& rasterName, std::string& rasterData, void* userData) {
    const std::string* dataUri = static_cast<PictureFolder*>(userData)->find(rasterName);
    if (dataUri == nullptr) {
        return false;
    }
    rasterData = *dataUri;
    return true;
}

std::string PictureFolder::readPicture(const std::string& rasterName) const {
    if (!isOnePathComponent(rasterName)) {
        return {};
    }
    for (const std::string& path : mFolders) {
        const FileDescriptor folder(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        if (!folder.isOpen()) {
            continue;
        }
        for (const std::string_view suffix : sSuffixes) {
            const std::string content = readRegularFile(folder.get(), rasterName + std::string(suffix));
            const std::string_view mediaType = kt::encoding::getPictureType(content);
            if (!mediaType.empty()) {
                return "data:" + std::string(mediaType) + ";base64," + kt::encoding::encodeBase64(content);
            }
        }
    }
    return {};
}

}  // namespace ktannot
