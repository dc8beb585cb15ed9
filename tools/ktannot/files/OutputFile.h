#pragma once

/// @file
/// Whole files or none.

#include "tools/ktannot/files/FileDescriptor.h"

#include <string>
#include <string_view>

namespace ktannot {

/// A file whose final name only ever stands for the whole content: it is written under a temporary name beside it and
/// renamed at the end. What is not published vanishes with the object.
class OutputFile {
public:
    /// What publish() does with a file that has the final name already.
    enum class Existing { Keep, Replace };

    /// The failure of publish() when the final name is taken and must be kept.
    static constexpr std::string_view sExistsAlready = "exists already";

    /// Creates the temporary file, and the folder with all folders above it when there is none.
    /// @param path  the final name.
    explicit OutputFile(const std::string& path);
    /// The same of a file below a folder: no link below it is followed out of it.
    OutputFile(const std::string& root, const std::string& below);
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    ~OutputFile();

    /// Why the file could not be created; empty when it was.
    const std::string& getFailure() const { return mFailure; }
    /// To write to; below 0 when the file could not be created.
    int getDescriptor() const { return mFile.get(); }

    /// Appends the content. Returns the reason of a failure, empty on success.
    std::string write(std::string_view content);
    /// Gives the file its final name. Returns the reason of a failure, empty on success.
    /// @param isDurable  wait until file and name are on the disk.
    std::string publish(Existing existing, bool isDurable = false);

private:
    void create();
    /// Whether the file that was just made stays this process's.
    bool isOwned() const;
    std::string finishContent(bool isDurable) const;

    std::string mName;  ///< in the folder
    std::string mTemporaryName;
    std::string mFailure;
    FileDescriptor mFolder;
    FileDescriptor mFile;
    bool mIsOnDisk = false;
};

}  // namespace ktannot
