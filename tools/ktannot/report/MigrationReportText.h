#pragma once

/// @file
/// Report of a migration for people.

#include "tools/ktannot/console/Console.h"
#include "tools/ktannot/report/DocumentResult.h"
#include "tools/ktannot/report/MigrationCounts.h"

#include <string>
#include <vector>

namespace ktannot {

/// The report that people read. Findings appear as documents are done; refused views are gathered for the end.
class MigrationReportText {
public:
    /// @param isQuiet    tell only what went wrong.
    /// @param isVerbose  name every drawing.
    /// @param hasResultsOnOutput  standard output carries the results: tell nothing there.
    MigrationReportText(Console& console, bool isQuiet, bool isVerbose, bool hasResultsOnOutput)
        : mConsole(console), mIsQuiet(isQuiet), mIsVerbose(isVerbose), mHasResultsOnOutput(hasResultsOnOutput) {}

    void add(const DocumentResult& result);
    /// True when add() would write to standard error, which a progress bar must give way to.
    static bool hasFindings(const DocumentResult& result);
    /// @param output    where the drawings went.
    /// @param isDryRun  they would go there.
    /// @param passedOver  by the search of folders; may be empty.
    void finish(const MigrationCounts& counts, const std::string& output, bool isDryRun, const std::string& passedOver);

private:
    void addView(const DocumentResult& result, std::size_t index);

    Console& mConsole;
    std::vector<std::string> mRefusedViews;
    bool mIsQuiet;
    bool mIsVerbose;
    bool mHasResultsOnOutput;
};

}  // namespace ktannot
