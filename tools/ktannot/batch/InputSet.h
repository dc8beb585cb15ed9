#pragma once

/// @file
/// The documents that the command line names.

#include "tools/ktannot/batch/BaseFolder.h"
#include "tools/ktannot/batch/Input.h"
#include "tools/ktannot/files/FileIdentity.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ktannot {

/// Turns arguments into documents: a file stays a file, "-" is standard input, and a folder gives its files *.kts and
/// *.json (in any case), searched recursively without following links and sorted by path, byte by byte.
///
/// Made for millions of documents: one takes its path and some 60 bytes.
class InputSet {
public:
    struct Options {
        /// Folder that the names of all documents are relative to; without it the folder that was searched or the one
        /// that the file is in.
        std::optional<std::string> mBase;
        /// A file with more arguments, one a line; "-" is standard input. In such a list "-" is a file of that name.
        std::optional<std::string> mListPath;
        /// The list's entries end with a NUL instead of a line break.
        bool mIsListNulSeparated = false;
    };

    /// What the search of folders passed over.
    struct PassedOver {
        std::size_t mLinks = 0;
        std::size_t mOtherFiles = 0;  ///< neither *.kts nor *.json, or no regular file

        /// "2 links, 1 other file"; empty when there is nothing.
        std::string describe() const;
    };

    explicit InputSet(const std::vector<std::string>& arguments) : InputSet(arguments, Options()) {}
    /// Throws UsageError when "-" stands twice, when a document is not below the base, when the list cannot be read and
    /// when there is nothing to read at all.
    /// @param arguments  in the order of the command line, which is kept; those of the list follow.
    InputSet(const std::vector<std::string>& arguments, const Options& options);

    std::size_t size() const { return mEntries.size(); }
    /// @param index  below size().
    Input operator[](std::size_t index) const;

    /// Two readable documents with the same name; nothing when all names differ.
    std::optional<std::pair<Input, Input>> findNamesakes() const;
    /// Keeps the documents whose name's FNV-1a hash of 64 bits is shard - 1 modulo shards.
    /// @param shard  from 1 to shards.
    void keepShard(std::uint64_t shard, std::uint64_t shards);

    /// Takes out the documents whose indices are marked.
    void remove(const std::vector<bool>& isMarked);

    /// Whether a file was named by the arguments, as a document of any shard or as the list of documents.
    bool contains(const FileIdentity& file) const;
    /// The folders that documents' names are relative to.
    const std::set<std::string>& getBases() const { return mBases; }
    /// The folders that documents are in, with everything below them, and where links to documents lead.
    const std::set<std::string>& getFolders() const { return mFolders; }
    const PassedOver& getPassedOver() const { return mPassedOver; }

private:
    class FolderSearch;
    enum class Kind : std::uint8_t { File, JsonOfFolder, StandardInput, Failed };

    /// Views into mTexts; the name is mostly the end of the source.
    struct Entry {
        const char* mSource = nullptr;
        const char* mName = nullptr;
        std::uint32_t mSourceLength = 0;
        std::uint32_t mNameLength = 0;
        std::uint32_t mFailure = 0;  ///< index in mFailures
        Kind mKind = Kind::File;

        std::string_view getSource() const { return {mSource, mSourceLength}; }
        std::string_view getName() const { return {mName, mNameLength}; }
    };

    void add(const std::string& argument, bool isFromList);
    void addList(const std::string& path, bool isNulSeparated);
    void addEntry(const std::string& source, std::string_view name, Kind kind);
    void addFailure(const std::string& source, std::string_view name, std::string failure);
    /// Copies a text to where it stays.
    const char* keepText(std::string_view text);
    void refuseNothing(const std::vector<std::string>& arguments) const;

    std::vector<std::unique_ptr<char[]>> mTexts;
    char* mTextEnd = nullptr;   ///< in the last of the texts
    std::size_t mFreeText = 0;  ///< bytes behind it
    std::vector<Entry> mEntries;
    std::vector<std::string> mFailures;
    std::vector<FileIdentity> mFiles;  ///< sorted
    std::set<std::string> mBases;
    std::set<std::string> mFolders;
    std::unique_ptr<BaseFolder> mBase;
    PassedOver mPassedOver;
};

}  // namespace ktannot
