#pragma once

/// @file
/// Which file a name stands for.

#include <sys/stat.h>

#include <compare>
#include <optional>
#include <string>

namespace ktannot {

/// Tells files apart whatever their names: links, hard links and other spellings of a path give the same identity.
struct FileIdentity {
    dev_t mDevice = 0;
    ino_t mInode = 0;

    auto operator<=>(const FileIdentity&) const = default;

    static FileIdentity of(const struct stat& status) { return {status.st_dev, status.st_ino}; }
    /// Of what a path leads to, links followed; nothing when it leads to nothing.
    static std::optional<FileIdentity> of(const std::string& path) {
        struct stat status {};
        return stat(path.c_str(), &status) == 0 ? std::optional(of(status)) : std::nullopt;
    }
};

}  // namespace ktannot
