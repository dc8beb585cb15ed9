#include "tools/ktannot/batch/ResultFile.h"

#include "tools/ktannot/batch/InputSet.h"
#include "tools/ktannot/files/FileBeginning.h"
#include "tools/ktannot/files/OutputFile.h"

#include <sys/stat.h>

namespace ktannot {

namespace {

/// Why what has the name already may not be replaced; empty when it may, or when there is nothing.
std::string findObstacle(const std::string& path, const MigrationOptions& options) {
    struct stat status {};
    if (lstat(path.c_str(), &status) != 0) {
        return {};
    }
    if (options.mInputs != nullptr && options.mInputs->contains(FileIdentity::of(status))) {
        return "is one of the documents, which are never written to; choose another folder with -o";
    }
    // Files named like documents may be anything.
    const std::string_view beginning = options.isDump() ? "{\"source\": " : "%PDF-";
    if (options.isOneFile() && S_ISREG(status.st_mode) && !readBeginning(path).starts_with(beginning)) {
        return std::string("is there already and is no ") + (options.isDump() ? "dump" : "PDF") +
               " of an earlier run; move it, or choose another folder with -o";
    }
    return {};
}

}  // namespace

std::string ResultFile::write(const std::string& path, std::span<const std::string_view> content,
                              const MigrationOptions& options) {
    const bool isReplacing = options.mExisting == MigrationOptions::Existing::Replace;
    if (isReplacing) {
        if (std::string obstacle = findObstacle(path, options); !obstacle.empty()) {
            return obstacle;
        }
    }
    // The folder that the user named may be a link; what is below it is ours.
    const std::size_t root = options.getPlace("").size();
    OutputFile file(path.substr(0, root), path.substr(root));
    std::string failure = file.getFailure();
    for (std::size_t piece = 0; failure.empty() && piece < content.size(); ++piece) {
        failure = file.write(content[piece]);
    }
    const auto existing = isReplacing ? OutputFile::Existing::Replace : OutputFile::Existing::Keep;
    return failure.empty() ? file.publish(existing, options.mIsDurable) : failure;
}

}  // namespace ktannot
