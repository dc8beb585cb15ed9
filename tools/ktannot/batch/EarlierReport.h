#pragma once

/// @file
/// Going on where an earlier run ended.

#include "tools/ktannot/batch/InputSet.h"
#include "tools/ktannot/report/ExitCode.h"
#include "tools/ktannot/report/MigrationCounts.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kt {
class ktVariant;
}  // namespace kt

namespace ktannot {

/// The report of lines that an earlier run has written, to its end or not. Lines of documents stay when the document is
/// what it was and its results are there, and when another try could not end better.
class EarlierReport {
public:
    /// @param path     of the report; there need not be one.
    /// @param options  what the report's first line tells of the options.
    EarlierReport(std::string path, std::string options) : mPath(std::move(path)), mOptions(std::move(options)) {}

    /// Takes the documents that need not be done again out of the inputs, and leaves their lines in the file alone.
    /// False when there is no report to go on with. Throws UsageError when it was made with other options and
    /// EnvironmentError when it cannot be read or written.
    bool takeFrom(InputSet& inputs);

    /// Of the lines that stay.
    const MigrationCounts& getCounts() const { return mCounts; }
    ExitCode getOutcome() const { return mOutcome; }

private:
    /// Whether a line stays.
    bool keeps(const kt::ktVariant& line, const InputSet& inputs);
    void count(const kt::ktVariant& line);

    std::string mPath;
    std::string mOptions;
    std::vector<std::pair<std::uint64_t, std::uint32_t>> mBySource;  ///< hash of the source and index, sorted
    std::vector<bool> mIsDone;
    MigrationCounts mCounts;
    ExitCode mOutcome = ExitCode::AllWell;
};

}  // namespace ktannot
