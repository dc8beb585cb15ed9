#include "tools/ktannot/batch/BaseFolder.h"

#include "tools/ktannot/UsageError.h"

#include <filesystem>
#include <system_error>

namespace ktannot {

namespace {

namespace fs = std::filesystem;

std::string endWithSlash(std::string path) { return path.ends_with('/') ? path : path + '/'; }

std::string getAbsolute(const fs::path& path) { return fs::absolute(path).lexically_normal().string(); }

}  // namespace

BaseFolder::BaseFolder(const std::string& path) : mPath(path) {
    std::error_code error;
    if (!fs::is_directory(path, error)) {
        throw UsageError("--base takes a folder that is there, not '" + path + "'");
    }
    mSpelt = endWithSlash(getAbsolute(path));
    mReal = endWithSlash(fs::canonical(path).string());
}

std::string BaseFolder::getNameBelow(const std::string& path) {
    const std::string spelt = getAbsolute(path);
    if (endWithSlash(spelt) == mSpelt) {
        return {};
    }
    if (spelt.starts_with(mSpelt)) {
        return spelt.substr(mSpelt.size());
    }
    // Many files of one folder follow each other.
    const fs::path folder = fs::path(spelt).parent_path();
    if (mLastReal.empty() || folder != mLastFolder) {
        mLastFolder = folder.string();
        std::error_code error;
        mLastReal = endWithSlash(fs::weakly_canonical(folder, error).string());
    }
    const std::string real = mLastReal + fs::path(spelt).filename().string();
    if (endWithSlash(real) == mReal) {
        return {};
    }
    if (!real.starts_with(mReal)) {
        throw UsageError("'" + path + "' is not below the folder of --base, '" + mPath + "'");
    }
    return real.substr(mReal.size());
}

}  // namespace ktannot
