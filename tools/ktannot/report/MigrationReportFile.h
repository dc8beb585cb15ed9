#pragma once

/// @file
/// Report of a migration for programs.

#include "tools/ktannot/console/TextOutput.h"
#include "tools/ktannot/files/SideOutput.h"
#include "tools/ktannot/report/DocumentResult.h"
#include "tools/ktannot/report/JsonWriter.h"
#include "tools/ktannot/report/MigrationCounts.h"

#include <string>

namespace ktannot {

/// The report that programs read: one JSON object, written document by document, so that a batch of any size takes
/// little memory.
class MigrationReportFile {
public:
    /// @param path  the file; it appears when finish() succeeds.
    explicit MigrationReportFile(const std::string& path);

    /// Why the file could not be created; empty when it was.
    const std::string& getFailure() const { return mFile.getFailure(); }
    void add(const DocumentResult& result);
    /// Returns the reason of a failure, empty on success.
    std::string finish(const MigrationCounts& counts, ExitCode outcome);

private:
    SideOutput mFile;
    TextOutput mText;
    JsonWriter mJson;
};

}  // namespace ktannot
