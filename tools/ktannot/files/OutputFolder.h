#pragma once

/// @file
/// Folders that results go to.

#include "tools/ktannot/files/FileDescriptor.h"

#include <string>

namespace ktannot {

/// Opens folders to create files in, and makes those that are missing.
class OutputFolder {
public:
    OutputFolder() = delete;

    /// A folder of that path, wherever its links lead.
    /// @param failure  receives the reason when it cannot be opened.
    static FileDescriptor open(const std::string& path, std::string& failure);
    /// A folder below another one. Links that lead out of that one are not followed.
    static FileDescriptor openBelow(const std::string& root, const std::string& below, std::string& failure);

    /// Removes the temporary files that nobody writes to any more, once in the life of this process.
    static void clean(const FileDescriptor& folder);
    /// Removes the temporary files that a process that is gone has left.
    static void removeLeftOvers(const std::string& path, int process);

    /// What the names of temporary files begin with; the number of their process follows.
    static constexpr const char* sTemporaryPrefix = ".ktannot-";
};

}  // namespace ktannot
