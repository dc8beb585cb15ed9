#include "tools/ktannot/batch/OutputCheck.h"

#include "tools/ktannot/EnvironmentError.h"
#include "tools/ktannot/UsageError.h"
#include "tools/ktannot/files/FileBeginning.h"
#include "tools/ktannot/files/OutputFile.h"
#include "tools/ktannot/files/SideOutput.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <system_error>

namespace ktannot {

namespace {

bool looksLikeFile(const std::string& path) {
    static constexpr std::array<std::string_view, 5> sSuffixes{".svg", ".json", ".jsonl", ".pdf", ".png"};
    return std::any_of(sSuffixes.begin(), sSuffixes.end(),
                       [&path](std::string_view suffix) { return path.ends_with(suffix); });
}

}  // namespace

void OutputCheck::checkFolder(const std::string& path) const {
    struct stat status {};
    const bool isThere = stat(path.c_str(), &status) == 0;
    if (isThere && !S_ISDIR(status.st_mode)) {
        throw UsageError("'" + path +
                         "' is a file, and -o takes a folder; one drawing goes to a file of any name with" +
                         " '-o - > FILE'");
    }
    if (!isThere && looksLikeFile(path)) {
        throw UsageError("-o takes a folder, and '" + path +
                         "' looks like a file; one drawing goes there with '-o - > " + path +
                         "', a folder of that name is '" + path + "/'");
    }
    for (const std::string& base : mInputs.getBases()) {
        if (isThere && FileIdentity::of(base) == FileIdentity::of(status)) {
            throw UsageError("'" + path +
                             "' is the folder of the documents: name another one with -o, so that results" +
                             " do not get among them");
        }
    }
    // Creating a file is the one sure way to find out whether that is possible.
    const OutputFile probe(path + (path.ends_with('/') ? "probe" : "/probe"));
    if (!probe.getFailure().empty()) {
        throw EnvironmentError("nothing can be written to '" + path + "': " + probe.getFailure());
    }
}

void OutputCheck::checkReport(const std::string& option, const std::string& path) const {
    checkFile(option, path, "report", isReport);
}

void OutputCheck::checkLog(const std::string& option, const std::string& path) const {
    checkFile(option, path, "log", isLog);
}

void OutputCheck::checkFile(const std::string& option, const std::string& path, const char* kind,
                            bool (*isOfKind)(std::string_view beginning)) const {
    struct stat status {};
    if (path.empty()) {
        throw UsageError(option + " takes a file, or - for standard output");
    }
    if (SideOutput::isStandardOutput(path) || stat(path.c_str(), &status) != 0) {
        return;
    }
    if (S_ISDIR(status.st_mode)) {
        throw UsageError("'" + path + "' is a folder, and " + option + " takes a file, for example '" + path +
                         (path.ends_with('/') ? "" : "/") + kind +
                         (kind == std::string_view("log") ? ".txt'" : ".json'"));
    }
    if (mInputs.contains(FileIdentity::of(status))) {
        throw UsageError("'" + path + "' is one of the inputs, which are never written to; give " + option +
                         " a file of its own");
    }
    if (!S_ISREG(status.st_mode) || status.st_size == 0 || mIsForced) {
        return;
    }
    if (!isOfKind(readBeginning(path))) {
        throw UsageError("'" + path + "' is there already and is no " + kind + " of an earlier run; give " + option +
                         " another file (was its name forgotten?), or replace this one with --force");
    }
}

bool OutputCheck::isReport(std::string_view beginning) {
    return beginning.starts_with("{\"tool\": \"ktannot\"") || beginning.starts_with("{\"report\": 1");
}

bool OutputCheck::isLog(std::string_view beginning) {
    // Milliseconds, the kind in brackets, the message.
    const std::size_t digits = std::min(beginning.find_first_not_of("0123456789"), beginning.size());
    return digits > 0 && beginning.substr(digits).starts_with(" [");
}

}  // namespace ktannot
