#include "tools/ktannot/batch/InputSet.h"

#include "tools/ktannot/UsageError.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <iterator>
#include <system_error>

namespace ktannot {

namespace {

namespace fs = std::filesystem;

std::string getFileName(const std::string& path) { return path.substr(path.rfind('/') + 1); }

std::string join(const std::string& folder, const std::string& below) {
    return folder.ends_with('/') ? folder + below : folder + "/" + below;
}

/// What stands below a folder.
class FolderSearch {
public:
    explicit FolderSearch(const std::string& folder) : mFolder(folder) {}

    /// All documents and failures, sorted by path.
    std::vector<Input> run() {
        mOpenFolders.emplace_back();
        while (!mOpenFolders.empty()) {
            const std::string below = std::move(mOpenFolders.back());
            mOpenFolders.pop_back();
            visit(below);
        }
        std::sort(mFound.begin(), mFound.end(),
                  [](const Input& a, const Input& b) { return a.mDocumentName < b.mDocumentName; });
        return std::move(mFound);
    }

private:
    /// @param below  path of the folder below the one searched, empty for itself.
    void visit(const std::string& below) {
        std::error_code error;
        fs::directory_iterator entry(below.empty() ? mFolder : join(mFolder, below), error);
        while (!error && entry != fs::directory_iterator()) {
            const std::string name = entry->path().filename().native();
            addEntry(*entry, below.empty() ? name : join(below, name));
            entry.increment(error);
        }
        if (error) {
            Input& failed = mFound.emplace_back();
            failed.mDocumentName = below;
            failed.mSource = below.empty() ? mFolder : join(mFolder, below);
            failed.mFailure = "the folder cannot be read: " + error.message();
        }
    }

    void addEntry(const fs::directory_entry& entry, const std::string& below) {
        std::error_code error;
        const fs::file_status status = entry.symlink_status(error);
        const bool isJson = below.ends_with(".json");
        if (fs::is_directory(status)) {
            mOpenFolders.push_back(below);
        } else if (fs::is_regular_file(status) && (isJson || below.ends_with(".kts"))) {
            Input& input = mFound.emplace_back();
            input.mSource = join(mFolder, below);
            input.mPath = input.mSource;
            input.mDocumentName = below;
            input.mIsJsonFromFolder = isJson;
        }
    }

    const std::string& mFolder;
    std::vector<std::string> mOpenFolders;
    std::vector<Input> mFound;
};

}  // namespace

InputSet::InputSet(const std::vector<std::string>& arguments) {
    if (std::count(arguments.begin(), arguments.end(), "-") > 1) {
        throw UsageError("'-' (standard input) can be given once only");
    }
    for (const std::string& argument : arguments) {
        add(argument);
    }
}

void InputSet::add(const std::string& argument) {
    struct stat status {};
    if (argument == "-") {
        Input& input = mInputs.emplace_back();
        input.mSource = argument;
        input.mDocumentName = "stdin";
    } else if (stat(argument.c_str(), &status) != 0) {
        Input& failed = mInputs.emplace_back();
        failed.mSource = argument;
        failed.mDocumentName = getFileName(argument);
        failed.mFailure = "cannot be read: " + std::generic_category().message(errno);
    } else if (S_ISDIR(status.st_mode)) {
        std::vector<Input> found = FolderSearch(argument).run();
        std::move(found.begin(), found.end(), std::back_inserter(mInputs));
    } else {
        Input& input = mInputs.emplace_back();
        input.mSource = argument;
        input.mPath = argument;
        input.mDocumentName = getFileName(argument);
    }
}

}  // namespace ktannot
