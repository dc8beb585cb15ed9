#include "tools/ktannot/files/PictureFolder.h"

#include "platform/encoding/Base64.h"
#include "platform/encoding/PictureKind.h"
#include "tools/ktannot/files/FileDescriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace ktannot {

namespace {

constexpr std::array<std::string_view, 6> sSuffixes{"", ".png", ".jpg", ".jpeg", ".gif", ".webp"};

bool isOnePathComponent(std::string_view name) {
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string_view::npos &&
           name.find('\0') == std::string_view::npos;
}

/// The content of a regular file; empty when there is none, or when it is too large.
/// @param failure  receives the reason when there is one that cannot be read.
std::string readRegularFile(int folder, const std::string& name, std::string& failure) {
    // Not blocking: a pipe of that name must not hang the tool.
    const FileDescriptor file(openat(folder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK));
    if (!file.isOpen()) {
        // Links are passed over, and so are sockets.
        const bool isNothing =
            errno == ENOENT || errno == ENOTDIR || errno == ELOOP || errno == ENAMETOOLONG || errno == ENXIO;
        failure = isNothing ? std::string() : std::generic_category().message(errno);
        return {};
    }
    struct stat status {};
    if (fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_size <= 0 ||
        static_cast<std::size_t>(status.st_size) > PictureFolder::sMaxPictureSize) {
        return {};
    }
    std::string content(static_cast<std::size_t>(status.st_size), '\0');
    std::size_t filled = 0;
    while (filled < content.size()) {
        const ssize_t count = read(file.get(), content.data() + filled, content.size() - filled);
        if (count <= 0) {
            failure = count < 0 ? std::generic_category().message(errno) : "it became shorter meanwhile";
            return {};
        }
        filled += static_cast<std::size_t>(count);
    }
    return content;
}

}  // namespace

const std::string* PictureFolder::find(const std::string& rasterName) {
    const auto [entry, isNew] = mPictures.try_emplace(rasterName);
    Picture& picture = entry->second;
    if (isNew) {
        picture = readPicture(rasterName);
    }
    if (!picture.mFailure.empty()) {
        mFailures.push_back(picture.mFailure);
    }
    return picture.mDataUri.empty() ? nullptr : &picture.mDataUri;
}

bool PictureFolder::provide(const std::string& rasterName, std::string& rasterData, void* userData) {
    const std::string* dataUri = static_cast<PictureFolder*>(userData)->find(rasterName);
    if (dataUri == nullptr) {
        return false;
    }
    rasterData = *dataUri;
    return true;
}

PictureFolder::Picture PictureFolder::readPicture(const std::string& rasterName) const {
    Picture picture;
    if (!isOnePathComponent(rasterName)) {
        return picture;
    }
    for (const std::string& path : mFolders) {
        // A folder need not be readable for its files to be.
        const FileDescriptor folder(open(path.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        if (!folder.isOpen()) {
            continue;
        }
        for (const std::string_view suffix : sSuffixes) {
            const std::string name = rasterName + std::string(suffix);
            std::string failure;
            const std::string content = readRegularFile(folder.get(), name, failure);
            if (!failure.empty() && picture.mFailure.empty()) {
                picture.mFailure = "the picture '" + name + "' cannot be read: " + failure;
            }
            const std::string_view mediaType = kt::encoding::getPictureType(content);
            if (!mediaType.empty()) {
                picture.mFailure.clear();
                picture.mDataUri = "data:" + std::string(mediaType) + ";base64," + kt::encoding::encodeBase64(content);
                return picture;
            }
        }
    }
    return picture;
}

}  // namespace ktannot
