#include "tools/ktannot/batch/InputSet.h"

#include "tools/ktannot/UsageError.h"
#include "tools/ktannot/report/CountOf.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <numeric>
#include <system_error>

namespace ktannot {

namespace {

std::string_view getFileName(std::string_view path) { return path.substr(path.rfind('/') + 1); }

std::string getFolder(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash == 0 ? 1 : slash);
}

std::string join(const std::string& folder, std::string_view below) {
    std::string path = folder;
    if (!path.empty() && !path.ends_with('/')) {
        path += '/';
    }
    return path += below;
}

std::string describe(int error) { return std::generic_category().message(error); }

/// Whether a name ends with a suffix of lower-case letters, in any case.
bool hasSuffix(std::string_view name, std::string_view suffix) {
    return name.size() >= suffix.size() &&
           std::equal(suffix.begin(), suffix.end(), name.end() - static_cast<std::ptrdiff_t>(suffix.size()),
                      [](char wanted, char found) {
                          return wanted == found || (found >= 'A' && found <= 'Z' && wanted == found - 'A' + 'a');
                      });
}

std::uint64_t hashName(std::string_view name) {
    std::uint64_t hash = 0xCBF29CE484222325;
    for (const char byte : name) {
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001B3;
    }
    return hash;
}

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

}  // namespace

std::string InputSet::PassedOver::describe() const {
    std::string text = mLinks != 0 ? countOf(mLinks, "link") : std::string();
    if (mOtherFiles != 0) {
        text += (text.empty() ? "" : ", ") + countOf(mOtherFiles, "other file");
    }
    return text;
}

/// Adds what stands below a folder.
class InputSet::FolderSearch {
public:
    /// @param nameAbove  what stands before the path below the folder in documents' names.
    FolderSearch(InputSet& inputs, const std::string& folder, const std::string& nameAbove)
        : mInputs(inputs), mFolder(folder), mNameAbove(nameAbove) {}

    void run() {
        const auto first = static_cast<std::ptrdiff_t>(mInputs.mEntries.size());
        mOpenFolders.emplace_back();
        while (!mOpenFolders.empty()) {
            const std::string below = std::move(mOpenFolders.back());
            mOpenFolders.pop_back();
            visit(below);
        }
        std::sort(mInputs.mEntries.begin() + first, mInputs.mEntries.end(),
                  [](const Entry& a, const Entry& b) { return a.getName() < b.getName(); });
    }

private:
    /// @param below  path of the folder below the one searched, empty for itself.
    void visit(const std::string& below) {
        const std::string path = below.empty() ? mFolder : join(mFolder, below);
        const std::unique_ptr<DIR, CloseFolder> folder(opendir(path.c_str()));
        if (folder == nullptr) {
            fail(path, below, "the folder cannot be read: " + describe(errno));
            return;
        }
        while (true) {
            errno = 0;
            const dirent* entry = readdir(folder.get());
            if (entry == nullptr) {
                break;
            }
            if (!addEntry(dirfd(folder.get()), *entry, below)) {
                fail(path, below, "the folder can be listed but not entered: " + describe(EACCES));
                return;
            }
        }
        if (errno != 0) {
            fail(path, below, "the folder cannot be read to its end: " + describe(errno));
        }
    }

    /// False when nothing in the folder can be reached.
    bool addEntry(int folder, const dirent& entry, const std::string& aboveIt) {
        const std::string_view name = entry.d_name;
        if (name == "." || name == "..") {
            return true;
        }
        const bool isJson = hasSuffix(name, ".json");
        const bool isDocument = isJson || hasSuffix(name, ".kts");
        mode_t type = static_cast<mode_t>(DTTOIF(entry.d_type));
        struct stat status {};
        if (entry.d_type == DT_UNKNOWN || (entry.d_type == DT_REG && isDocument)) {
            if (fstatat(folder, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) != 0) {
                if (errno == EACCES) {
                    return false;
                }
                const std::string below = join(aboveIt, name);
                fail(join(mFolder, below), below, "cannot be read: " + describe(errno));
                return true;
            }
            type = status.st_mode;
        }
        if (S_ISDIR(type)) {
            mOpenFolders.push_back(join(aboveIt, name));
        } else if (S_ISLNK(type)) {
            ++mInputs.mPassedOver.mLinks;
        } else if (!S_ISREG(type) || !isDocument) {
            ++mInputs.mPassedOver.mOtherFiles;
        } else {
            const std::string below = join(aboveIt, name);
            mInputs.mFiles.push_back(FileIdentity::of(status));
            mInputs.addEntry(join(mFolder, below), join(mNameAbove, below), isJson ? Kind::JsonOfFolder : Kind::File);
        }
        return true;
    }

    void fail(const std::string& path, const std::string& below, std::string failure) {
        mInputs.addFailure(path, join(mNameAbove, below), std::move(failure));
    }

    InputSet& mInputs;
    const std::string& mFolder;
    const std::string& mNameAbove;
    std::vector<std::string> mOpenFolders;
};

InputSet::InputSet(const std::vector<std::string>& arguments, const Options& options) {
    const bool isListStandardInput = options.mListPath == "-";
    if (std::count(arguments.begin(), arguments.end(), "-") + (isListStandardInput ? 1 : 0) > 1) {
        throw UsageError("'-' (standard input) can be given once only");
    }
    if (options.mBase) {
        mBase = std::make_unique<BaseFolder>(*options.mBase);
        mBases.insert(*options.mBase);
    }
    for (const std::string& argument : arguments) {
        add(argument, false);
    }
    if (options.mListPath) {
        addList(*options.mListPath, options.mIsListNulSeparated);
    }
    refuseNothing(arguments);
    std::sort(mFiles.begin(), mFiles.end());
}

void InputSet::refuseNothing(const std::vector<std::string>& arguments) const {
    if (!mEntries.empty()) {
        return;
    }
    std::string places;
    for (const std::string& argument : arguments) {
        places += (places.empty() ? " in '" : ", '") + argument + "'";
    }
    const std::string passedOver = mPassedOver.describe();
    throw UsageError("no document was found" + places + ": folders are searched for *.kts and *.json" +
                     (passedOver.empty() ? "" : "; passed over: " + passedOver));
}

void InputSet::add(const std::string& argument, bool isFromList) {
    if (argument == "-" && !isFromList) {
        addEntry(argument, "stdin", Kind::StandardInput);
        return;
    }
    const std::string name = mBase != nullptr ? mBase->getNameBelow(argument) : std::string(getFileName(argument));
    struct stat status {};
    if (stat(argument.c_str(), &status) != 0) {
        addFailure(argument, name, "cannot be read: " + describe(errno));
    } else if (S_ISDIR(status.st_mode)) {
        mBases.insert(argument);
        mFolders.insert(argument);
        FolderSearch(*this, argument, mBase != nullptr ? name : std::string()).run();
    } else {
        const std::string folder = getFolder(argument);
        mBases.insert(folder);
        mFolders.insert(folder);
        struct stat itself {};
        if (lstat(argument.c_str(), &itself) == 0 && S_ISLNK(itself.st_mode)) {
            std::error_code error;
            mFolders.insert(std::filesystem::canonical(argument, error).parent_path().string());
        }
        mFiles.push_back(FileIdentity::of(status));
        addEntry(argument, name, Kind::File);
    }
}

void InputSet::addList(const std::string& path, bool isNulSeparated) {
    std::ifstream file;
    if (path != "-") {
        file.open(path, std::ios::binary);
        if (const std::optional<FileIdentity> identity = FileIdentity::of(path); identity) {
            mFiles.push_back(*identity);
        }
    }
    std::istream& list = path == "-" ? std::cin : file;
    std::string argument;
    while (std::getline(list, argument, isNulSeparated ? '\0' : '\n')) {
        if (!argument.empty()) {
            add(argument, true);
        }
    }
    if (!list.eof()) {
        throw UsageError("the list of --files-from, '" + path + "', cannot be read: " + describe(errno));
    }
}

const char* InputSet::keepText(std::string_view text) {
    static constexpr std::size_t sPieceSize = std::size_t{64} * 1024;
    if (text.size() > mFreeText || mTexts.empty()) {
        mFreeText = std::max(sPieceSize, text.size());
        mTexts.push_back(std::make_unique_for_overwrite<char[]>(mFreeText));
        mTextEnd = mTexts.back().get();
    }
    char* place = mTextEnd;
    std::memcpy(place, text.data(), text.size());
    mTextEnd += text.size();
    mFreeText -= text.size();
    return place;
}

void InputSet::addEntry(const std::string& source, std::string_view name, Kind kind) {
    Entry& entry = mEntries.emplace_back();
    entry.mSource = keepText(source);
    entry.mSourceLength = static_cast<std::uint32_t>(source.size());
    entry.mName = source.ends_with(name) ? entry.mSource + (source.size() - name.size()) : keepText(name);
    entry.mNameLength = static_cast<std::uint32_t>(name.size());
    entry.mKind = kind;
}

void InputSet::addFailure(const std::string& source, std::string_view name, std::string failure) {
    addEntry(source, name, Kind::Failed);
    mEntries.back().mFailure = static_cast<std::uint32_t>(mFailures.size());
    mFailures.push_back(std::move(failure));
}

Input InputSet::operator[](std::size_t index) const {
    const Entry& entry = mEntries[index];
    Input input;
    input.mSource = entry.getSource();
    input.mDocumentName = entry.getName();
    input.mIsJsonFromFolder = entry.mKind == Kind::JsonOfFolder;
    if (entry.mKind == Kind::Failed) {
        input.mFailure = mFailures[entry.mFailure];
    } else if (entry.mKind != Kind::StandardInput) {
        input.mPath = input.mSource;
    }
    return input;
}

std::optional<std::pair<Input, Input>> InputSet::findNamesakes() const {
    std::vector<std::uint32_t> byName(mEntries.size());
    std::iota(byName.begin(), byName.end(), 0);
    std::erase_if(byName, [this](std::uint32_t index) { return mEntries[index].mKind == Kind::Failed; });
    std::stable_sort(byName.begin(), byName.end(), [this](std::uint32_t a, std::uint32_t b) {
        return mEntries[a].getName() < mEntries[b].getName();
    });
    const auto same = std::adjacent_find(byName.begin(), byName.end(), [this](std::uint32_t a, std::uint32_t b) {
        return mEntries[a].getName() == mEntries[b].getName();
    });
    if (same == byName.end()) {
        return std::nullopt;
    }
    return std::pair((*this)[*same], (*this)[*(same + 1)]);
}

void InputSet::keepShard(std::uint64_t shard, std::uint64_t shards) {
    std::erase_if(mEntries, [=](const Entry& entry) { return hashName(entry.getName()) % shards != shard - 1; });
}

void InputSet::remove(const std::vector<bool>& isMarked) {
    std::size_t index = 0;
    std::erase_if(mEntries, [&](const Entry& /*entry*/) { return isMarked[index++]; });
}

bool InputSet::contains(const FileIdentity& file) const {
    return std::binary_search(mFiles.begin(), mFiles.end(), file);
}

}  // namespace ktannot
