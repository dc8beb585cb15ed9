#pragma once

/// @file
/// What may be written to.

#include "tools/ktannot/batch/InputSet.h"

#include <functional>
#include <string>
#include <string_view>

namespace ktannot {

/// Looks at the places that options name, before any work: nothing that is an input of the run is ever written to, and
/// nothing of somebody else's unasked. Throws UsageError for what another command line would put right and
/// EnvironmentError for what the surroundings do not allow.
class OutputCheck {
public:
    /// @param inputs    all of the run; must outlive this.
    /// @param isForced  other files may be replaced.
    OutputCheck(const InputSet& inputs, bool isForced) : mInputs(inputs), mIsForced(isForced) {}

    /// The folder for the results, which is created when it is missing.
    void checkFolder(const std::string& path) const;
    void checkReport(const std::string& option, const std::string& path) const;
    void checkLog(const std::string& option, const std::string& path) const;

    /// Whether a file's beginning is that of a report, or of a log.
    static bool isReport(std::string_view beginning);
    static bool isLog(std::string_view beginning);

private:
    void checkFile(const std::string& option, const std::string& path, const char* kind,
                   bool (*isOfKind)(std::string_view beginning)) const;

    const InputSet& mInputs;
    bool mIsForced;
};

}  // namespace ktannot
