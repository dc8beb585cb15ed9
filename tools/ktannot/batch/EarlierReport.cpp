#include "tools/ktannot/batch/EarlierReport.h"

#include "platform/encoding/Hex.h"
#include "platform/system/json/ktVariantJson.h"
#include "platform/system/variant/ktVariantListImpl.h"
#include "platform/system/variant/ktVariantMapImpl.h"
#include "tools/ktannot/EnvironmentError.h"
#include "tools/ktannot/UsageError.h"
#include "tools/ktannot/files/FileHash.h"
#include "tools/ktannot/files/OutputFile.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <functional>
#include <span>
#include <system_error>

namespace ktannot {

namespace {

using kt::ktVariant;

const ktVariant* find(const ktVariant& map, const char* key) {
    if (map.getMap() == nullptr) {
        return nullptr;
    }
    const auto entry = map.getMap()->find(key);
    return entry != map.getMap()->end() ? &entry->second : nullptr;
}

/// A text as JsonWriter writes it: as it is, or the bytes of one that is not valid UTF-8.
std::string getText(const ktVariant& map, const char* key) {
    const ktVariant* value = find(map, key);
    if (value == nullptr || value->isString()) {
        return value != nullptr ? std::string(value->getStringView()) : std::string();
    }
    const std::string digits = getText(*value, "bytes");
    std::string bytes;
    for (std::size_t index = 0; index + 1 < digits.size(); index += 2) {
        bytes +=
            static_cast<char>(kt::encoding::hexValue(digits[index]) * 16 + kt::encoding::hexValue(digits[index + 1]));
    }
    return bytes;
}

std::int64_t getInteger(const ktVariant& map, const char* key) {
    const ktVariant* value = find(map, key);
    return value != nullptr ? value->toInteger() : 0;
}

bool isThere(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0;
}

/// Whether the document is what it was.
bool isUnchanged(const ktVariant& line, const std::string& source) {
    struct stat status {};
    const ktVariant* modified = find(line, "mtime");
    if (modified == nullptr || stat(source.c_str(), &status) != 0 ||
        getInteger(line, "size") != static_cast<std::int64_t>(status.st_size)) {
        return false;
    }
    return modified->toReal() == getSeconds(status.st_mtim) || getText(line, "sha256") == hashFile(source);
}

/// Whether all results that were written are there.
bool hasResults(const ktVariant& line) {
    if (const std::string file = getText(line, "file"); !file.empty() && !isThere(file)) {
        return false;
    }
    const ktVariant* views = find(line, "views");
    for (std::size_t index = 0; views != nullptr && views->isList() && index < views->getList()->size(); ++index) {
        const ktVariant& view = (*views->getList())[index];
        const std::string state = getText(view, "state");
        const std::string file = getText(view, "file");
        if ((state == "written" || state == "skipped") && !file.empty() && !isThere(file)) {
            return false;
        }
    }
    return true;
}

bool isWorthAnotherTry(std::int64_t code) {
    return code == static_cast<int>(ExitCode::EnvironmentFailed) || code == static_cast<int>(ExitCode::Interrupted) ||
           code == static_cast<int>(ExitCode::Terminated);
}

}  // namespace

bool EarlierReport::takeFrom(InputSet& inputs) {
    std::ifstream file(mPath, std::ios::binary);
    if (!file) {
        if (errno == ENOENT) {
            return false;
        }
        throw EnvironmentError(mPath + ": the report cannot be read: " + std::generic_category().message(errno));
    }
    mIsDone.assign(inputs.size(), false);
    for (std::size_t index = 0; index < inputs.size(); ++index) {
        mBySource.emplace_back(std::hash<std::string>()(inputs[index].mSource), static_cast<std::uint32_t>(index));
    }
    std::sort(mBySource.begin(), mBySource.end());

    OutputFile kept(mPath);
    std::string failure = kept.getFailure();
    std::string buffer;
    kt::ktJsonReader reader;
    bool isFirst = true;
    for (std::string text; failure.empty() && std::getline(file, text) && !file.eof();) {
        ktVariant line;
        kt::ktJsonError error;
        const bool isWhole = reader.parse(std::as_bytes(std::span(text)), line, error);
        if (isFirst) {
            if (!isWhole || find(line, "report") == nullptr) {
                return false;
            }
            if (text.find("\"options\": " + mOptions + "}") == std::string::npos) {
                throw UsageError("'" + mPath + "' was begun with other options: go on with those, or begin another " +
                                 "report without --resume");
            }
        } else if (!isWhole || find(line, "source") == nullptr) {
            continue;
        }
        if (isFirst || keeps(line, inputs)) {
            buffer += text;
            buffer += '\n';
        }
        isFirst = false;
        if (buffer.size() > std::size_t{64} * 1024) {
            failure = kept.write(std::exchange(buffer, {}));
        }
    }
    if (isFirst) {
        return false;
    }
    failure = failure.empty() ? kept.write(buffer) : failure;
    failure = failure.empty() ? kept.publish(OutputFile::Existing::Replace) : failure;
    if (!failure.empty()) {
        throw EnvironmentError(mPath + ": the report " + failure);
    }
    inputs.remove(mIsDone);
    return true;
}

bool EarlierReport::keeps(const ktVariant& line, const InputSet& inputs) {
    const std::string source = getText(line, "source");
    if (isWorthAnotherTry(getInteger(line, "exit")) || !isUnchanged(line, source) || !hasResults(line)) {
        return false;
    }
    const auto hash = static_cast<std::uint64_t>(std::hash<std::string>()(source));
    for (auto found = std::lower_bound(mBySource.begin(), mBySource.end(), std::pair(hash, std::uint32_t{0}));
         found != mBySource.end() && found->first == hash; ++found) {
        if (inputs[found->second].mSource == source) {
            if (mIsDone[found->second]) {
                return false;
            }
            mIsDone[found->second] = true;
            break;
        }
    }
    count(line);
    return true;
}

void EarlierReport::count(const ktVariant& line) {
    mOutcome = worst(mOutcome, static_cast<ExitCode>(getInteger(line, "exit")));
    ++mCounts.mDocuments;
    const ktVariant* views = find(line, "views");
    for (std::size_t index = 0; views != nullptr && views->isList() && index < views->getList()->size(); ++index) {
        const std::string state = getText((*views->getList())[index], "state");
        mCounts.mWritten += state == "written" ? 1U : 0U;
        mCounts.mSkippedViews += state == "skipped" ? 1U : 0U;
        mCounts.mRefusedViews += state == "refused" ? 1U : 0U;
        mCounts.mFailedViews += state == "failed" ? 1U : 0U;
    }
}

}  // namespace ktannot
