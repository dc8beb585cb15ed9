#pragma once

/// @file
/// The main job.

#include "tools/ktannot/batch/InputSet.h"
#include "tools/ktannot/batch/MigrationOptions.h"
#include "tools/ktannot/commands/Command.h"

#include <string>
#include <vector>

namespace ktannot {

/// ktannot migrate: legacy documents in, one drawing per view out. Documents are worked on in parallel; everything that
/// is told or written to standard output keeps the order of the inputs.
class MigrateCommand : public Command {
public:
    const char* getName() const override { return "migrate"; }
    const char* getSummary() const override { return "Turn legacy documents into drawings, one SVG file per view"; }
    std::string getDetails() const override;
    void declareOptions(CLI::App& app) override;
    ExitCode run(Surroundings& surroundings) override;

private:
    void checkOptions();
    void refuseSharedPlaces(const InputSet& inputs) const;
    /// False when there is a log file that cannot be opened.
    bool openLogFile(DocumentLog& log) const;

    std::vector<std::string> mInputs;
    MigrationOptions mOptions;
    std::string mFormatName = "svg";
    std::string mAcceptedWords;
    std::string mTextModeName = "text";
    std::string mRasterFolder;
    std::string mReportPath;
    std::string mLogPath;
    double mHeadSize = 3.0;
    int mJobs = 0;
    int mVerbosity = 0;
    bool mIsForced = false;
    bool mIsSkipping = false;
    bool mIsQuiet = false;
};

}  // namespace ktannot
