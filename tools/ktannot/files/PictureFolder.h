#pragma once

/// @file
/// Pictures that raster annotations name.

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ktannot {

/// Looks pictures up by raster name in a few folders and nowhere else: the name is one path component, the file is
/// found under it as it is or with a picture suffix, links are not followed, and only regular files whose first bytes
/// are PNG, JPEG, GIF or WebP count. Found pictures are remembered.
class PictureFolder {
public:
    /// Larger files are not read: no drawing could embed them.
    static constexpr std::size_t sMaxPictureSize = std::size_t{64} * 1024 * 1024;

    /// @param folders  searched in this order; folders that do not exist and links to folders are passed over (with
    ///                 "/." behind it, a link is followed).
    explicit PictureFolder(std::vector<std::string> folders) : mFolders(std::move(folders)) {}

    /// The picture as a data URI, null when there is none. Valid as long as the object.
    const std::string* find(const std::string& rasterName);

    /// A raster callback of the migration; userData is a PictureFolder.
    static bool provide(const std::string& rasterName, std::string& rasterData, void* userData);

    /// Why pictures that were looked for since the last call are there and cannot be read.
    std::vector<std::string> takeFailures() { return std::exchange(mFailures, {}); }

private:
    struct Picture {
        std::string mDataUri;  ///< empty: not found
        std::string mFailure;  ///< found, and not readable
    };

    Picture readPicture(const std::string& rasterName) const;

    std::vector<std::string> mFolders;
    std::map<std::string, Picture> mPictures;  ///< by raster name
    std::vector<std::string> mFailures;
};

}  // namespace ktannot
