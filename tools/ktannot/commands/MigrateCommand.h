#pragma once

/// @file
/// The main job.

#include "tools/ktannot/batch/InputSet.h"
#include "tools/ktannot/commands/Command.h"
#include "tools/ktannot/commands/MigrateOptions.h"

#include <memory>
#include <string>

namespace ktannot {

class MigrationReportFile;

/// ktannot migrate: legacy documents in, one drawing per view out. Documents are worked on in parallel; everything that
/// is told or written to standard output keeps the order of the inputs.
class MigrateCommand : public Command {
public:
    const char* getName() const override { return "migrate"; }
    const char* getSummary() const override { return "Turn legacy documents into drawings, one SVG file per view"; }
    std::string getDetails() const override;
    void declareOptions(CLI::App& app) override;
    ExitCode run(Channels& channels) override;

private:
    InputSet findInputs() const;
    /// Null when none is wanted.
    /// @param isContinued  whether it has lines that stay.
    std::unique_ptr<MigrationReportFile> openReport(bool isContinued) const;
    void openLogFile(ProcessLog& log) const;

    MigrateOptions mOptions;
};

}  // namespace ktannot
