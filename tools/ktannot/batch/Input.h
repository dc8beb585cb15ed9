#pragma once

/// @file
/// One document that the command line names.

#include <string>

namespace ktannot {

/// One document to read, or the reason why there is none.
struct Input {
    /// As given; for files of a folder the folder, "/" and the path below it.
    std::string mSource;
    /// What to open; empty for standard input.
    std::string mPath;
    /// Its path below the base: the file's name with its suffix, for files of a folder the path below it, "stdin" for
    /// standard input. Results are placed by it.
    std::string mDocumentName;
    /// Found in a folder by its suffix ".json": it may turn out to be no document at all.
    bool mIsJsonFromFolder = false;
    /// Why there is nothing to open (no such file, folder not readable); empty when all is well.
    std::string mFailure;

    bool isStandardInput() const { return mSource == "-" && mPath.empty(); }
};

}  // namespace ktannot
