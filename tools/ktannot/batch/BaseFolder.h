#pragma once

/// @file
/// The folder that names of documents are relative to.

#include <string>

namespace ktannot {

/// Names files by their path below a folder, however both are spelt. Used by one thread.
class BaseFolder {
public:
    /// @param path  as given. Throws UsageError when it is no folder.
    explicit BaseFolder(const std::string& path);

    const std::string& getPath() const { return mPath; }
    /// The path below the folder, empty for the folder itself. Throws UsageError for what is not below it.
    /// @param path  a file or folder, which need not exist.
    std::string getNameBelow(const std::string& path);

private:
    std::string mPath;
    std::string mSpelt;       ///< absolute, with "/" at its end
    std::string mReal;        ///< with all links resolved, too
    std::string mLastFolder;  ///< of the file before
    std::string mLastReal;
};

}  // namespace ktannot
