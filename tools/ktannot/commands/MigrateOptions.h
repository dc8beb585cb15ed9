#pragma once

/// @file
/// The options of the command migrate.

#include "tools/ktannot/batch/InputSet.h"
#include "tools/ktannot/batch/MigrationOptions.h"
#include "tools/ktannot/batch/Sandbox.h"
#include "tools/ktannot/console/Progress.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace ktannot {

/// What the command line asks of migrate: declared, parsed and checked for what each option says alone.
class MigrateOptions {
public:
    void declare(CLI::App& app);
    /// Turns words into values. Throws UsageError.
    void check();
    /// Throws UsageError and EnvironmentError for places that cannot be written to, or must not be, before any work.
    void checkPlaces(const InputSet& inputs) const;

    /// Whether standard output carries results, a report or a log, and nothing for people.
    bool isStandardOutputTaken() const;
    /// What results depend on, as one JSON object.
    std::string describe() const;
    /// How progress is shown.
    Progress::Form getProgressForm(bool isTerminal) const;
    int getJobs(std::size_t documents) const;

    std::vector<std::string> mInputs;
    InputSet::Options mInputOptions;
    std::uint64_t mShard = 1;
    std::uint64_t mShards = 1;
    MigrationOptions mMigration;
    std::optional<std::string> mReportPath;
    std::optional<std::string> mLogPath;
    std::chrono::milliseconds mTimeLimit{60'000};
    Sandbox::Mode mSandbox = Sandbox::Mode::Auto;
    bool mIsResumed = false;
    bool mIsForced = false;
    bool mIsQuiet = false;
    bool mIsVerbose = false;
    bool mIsIsolated = true;

private:
    void declareInput(CLI::App& app);
    void declareOutput(CLI::App& app);
    void declareTold(CLI::App& app);
    void declareLimits(CLI::App& app);
    void parseShard();
    void refuseSharedPlaces(const InputSet& inputs) const;

    std::string mShardText;
    std::string mFormatName = "svg";
    std::string mAcceptedWords;
    std::string mTextModeName = "text";
    std::string mPictureBackgroundName = "none";
    std::string mProgressName = "auto";
    std::string mIsolateName = "auto";
    std::string mSandboxName = "auto";
    double mHeadSize = 3.0;
    double mTimeLimitSeconds = 60.0;
    int mJobs = 0;
    bool mIsSkipping = false;
};

}  // namespace ktannot
