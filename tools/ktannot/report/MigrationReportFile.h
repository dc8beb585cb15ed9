#pragma once

/// @file
/// Report of a migration for programs.

#include "tools/ktannot/console/TextOutput.h"
#include "tools/ktannot/files/SideOutput.h"
#include "tools/ktannot/report/DocumentReport.h"
#include "tools/ktannot/report/JsonWriter.h"
#include "tools/ktannot/report/MigrationCounts.h"
#include "tools/ktannot/report/ReportForm.h"

#include <string>

namespace ktannot {

/// The report that programs read, written document by document, so that a batch of any size takes little memory: one
/// JSON object that appears when it is whole, or lines that are there as soon as their document is done.
class MigrationReportFile {
public:
    /// @param path  the file, or "-".
    /// @param form  not None.
    /// @param isContinued  keep the lines that are there and write behind them.
    MigrationReportFile(const std::string& path, ReportForm form, bool isContinued);

    /// Why the file could not be created; empty when it was.
    const std::string& getFailure() const { return mFile.getFailure(); }
    /// Writes the first line of a report of lines.
    void writeHead(const std::string& options);
    void add(const DocumentReport& report);
    /// Returns the reason of a failure, empty on success.
    std::string finish(const MigrationCounts& counts, ExitCode outcome);

    /// The form that goes with a file's name.
    static ReportForm getForm(const std::string& path);

private:
    void writeCounts(const MigrationCounts& counts);

    ReportForm mForm;
    SideOutput mFile;
    TextOutput mText;
    JsonWriter mJson;
};

}  // namespace ktannot
