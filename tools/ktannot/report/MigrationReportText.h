#pragma once

/// @file
/// Report of a migration for people.

#include "tools/ktannot/console/Console.h"
#include "tools/ktannot/report/DocumentReport.h"
#include "tools/ktannot/report/MigrationCounts.h"

#include <string>

namespace ktannot {

/// The report that people read. Messages appear as documents are done; of each cause the first few, the others are
/// counted and told at the end, as are refused views.
class MigrationReportText {
public:
    /// @param isQuiet    tell only what went wrong.
    /// @param hasResultsOnOutput  standard output carries the results: tell nothing there.
    MigrationReportText(Console& console, bool isQuiet, bool hasResultsOnOutput)
        : mConsole(console), mIsQuiet(isQuiet), mHasResultsOnOutput(hasResultsOnOutput) {}

    void add(const DocumentReport& report);
    /// True when add() would write to standard error, which a progress bar must give way to.
    static bool hasMessages(const DocumentReport& report) { return !report.mGroups.empty(); }
    /// @param output      where the drawings went.
    /// @param isDryRun    they would go there.
    /// @param passedOver  by the search of folders; may be empty.
    void finish(const MigrationCounts& counts, const std::string& output, bool isDryRun, const std::string& passedOver);

private:
    void finishGroups();

    Console& mConsole;
    DocumentReport mTotal;  ///< its groups only
    bool mIsQuiet;
    bool mHasResultsOnOutput;
};

}  // namespace ktannot
