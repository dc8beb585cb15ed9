#pragma once

/// @file
/// The documents that the command line names.

#include <string>
#include <vector>

namespace ktannot {

/// One document to read, or the reason why there is none.
struct Input {
    /// As given; for files of a folder the folder, "/" and the path below it.
    std::string mSource;
    /// What to open; empty for standard input.
    std::string mPath;
    /// The file's name with its suffix, for files of a folder the path below it, "stdin" for standard input.
    std::string mDocumentName;
    /// Found in a folder by its suffix ".json": it may turn out to be no document at all.
    bool mIsJsonFromFolder = false;
    /// Why there is nothing to open (no such file, folder not readable); empty when all is well.
    std::string mFailure;

    bool isStandardInput() const { return mSource == "-" && mPath.empty(); }
};

/// Turns arguments into documents: a file stays a file, "-" is standard input, and a folder gives its files *.kts and
/// *.json, searched recursively without following links and sorted by path, byte by byte.
class InputSet {
public:
    /// @param arguments  in the order of the command line, which is kept. Throws UsageError when "-" stands twice.
    explicit InputSet(const std::vector<std::string>& arguments);

    const std::vector<Input>& getInputs() const { return mInputs; }

private:
    void add(const std::string& argument);

    std::vector<Input> mInputs;
};

}  // namespace ktannot
