#pragma once

/// @file
/// The main job.

#include "tools/ktannot/batch/InputSet.h"
#include "tools/ktannot/batch/MigrationOptions.h"
#include "tools/ktannot/commands/Command.h"

#include <cstdint>
#include <optional>
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
    ExitCode run(Channels& channels) override;

private:
    void checkOptions();
    void parseShard();
    void refuseSharedPlaces(const InputSet& inputs) const;
    /// Refuses outputs that would harm something or cannot work.
    void checkOutputs(const InputSet& inputs) const;
    /// Whether standard output carries results, a report or a log, and nothing for people.
    bool isStandardOutputTaken() const;
    void openLogFile(DocumentLog& log) const;

    std::vector<std::string> mInputs;
    InputSet::Options mInputOptions;
    MigrationOptions mOptions;
    std::string mShardText;
    std::uint64_t mShard = 1;
    std::uint64_t mShards = 1;
    std::string mFormatName = "svg";
    std::string mAcceptedWords;
    std::string mTextModeName = "text";
    std::string mPictureBackgroundName = "none";
    std::optional<std::string> mReportPath;
    std::optional<std::string> mLogPath;
    double mHeadSize = 3.0;
    int mJobs = 0;
    bool mIsForced = false;
    bool mIsSkipping = false;
    bool mIsQuiet = false;
    bool mIsVerbose = false;
};

}  // namespace ktannot
