#include "tools/ktannot/commands/MigrateCommand.h"

#include "tools/ktannot/EnvironmentError.h"
#include "tools/ktannot/UsageError.h"
#include "tools/ktannot/batch/EarlierReport.h"
#include "tools/ktannot/batch/IsolatedRun.h"
#include "tools/ktannot/batch/StopSignal.h"
#include "tools/ktannot/batch/ThreadedRun.h"
#include "tools/ktannot/console/TerminalText.h"
#include "tools/ktannot/console/TextOutput.h"
#include "tools/ktannot/files/SideOutput.h"
#include "tools/ktannot/render/RenderModule.h"
#include "tools/ktannot/report/CountOf.h"
#include "tools/ktannot/report/MigrationCounts.h"
#include "tools/ktannot/report/MigrationReportFile.h"
#include "tools/ktannot/report/MigrationReportText.h"

#include <CLI/CLI.hpp>

#include <atomic>
#include <csignal>
#include <memory>
#include <utility>

namespace ktannot {

std::string MigrateCommand::getDetails() const {
    return "Examples:\n"
           "  ktannot migrate archive/                     every document below archive/ to migrated/\n"
           "  ktannot migrate a.kts b.json -o drawings     two documents to drawings/\n"
           "  ktannot migrate archive/ --accept all        also what carries metadata, which drawings cannot keep\n"
           "  ktannot migrate note.kts --view 1 -o - > note.svg\n"
           "                                               one drawing to standard output\n"
           "  ktannot migrate archive/ --report done.json --skip-existing\n"
           "                                               go on where an earlier run ended, and report for programs\n"
           "\n"
           "Drawings go to DIR/<document>/<NNN>-<view>.svg. Nothing is overwritten and no metadata is dropped "
           "unasked.\n"
           "\n" +
           getExitCodeText();
}

void MigrateCommand::declareOptions(CLI::App& app) { mOptions.declare(app); }

void MigrateCommand::openLogFile(ProcessLog& log) const {
    if (!mOptions.mLogPath) {
        return;
    }
    const auto file = std::make_shared<SideOutput>(*mOptions.mLogPath, SideOutput::Way::Append);
    if (!file->getFailure().empty()) {
        throw EnvironmentError(*mOptions.mLogPath + ": the log file " + file->getFailure());
    }
    const auto text = std::make_shared<TextOutput>(file->getDescriptor());
    log.setListener(kt::ktLog::Debug, [file, text](const kt::ktLogEntry& entry) {
        text->write(std::to_string(entry.mMilliseconds) + " [" + std::to_string(entry.mType) + "] " +
                    makeTerminalText(entry.mMessage) + "\n");
        text->flush();
    });
}

InputSet MigrateCommand::findInputs() const {
    InputSet inputs(mOptions.mInputs, mOptions.mInputOptions);
    const MigrationOptions& migration = mOptions.mMigration;
    if (migration.isToStandardOutput() && !migration.isDump() && inputs.size() > 1) {
        throw UsageError("-o - writes one drawing, and there are " + std::to_string(inputs.size()) +
                         " documents: name one, or a folder for all with -o");
    }
    mOptions.checkPlaces(inputs);
    inputs.keepShard(mOptions.mShard, mOptions.mShards);
    return inputs;
}

std::unique_ptr<MigrationReportFile> MigrateCommand::openReport(bool isContinued) const {
    if (!mOptions.mReportPath) {
        return nullptr;
    }
    const std::string& path = *mOptions.mReportPath;
    const ReportForm form = MigrationReportFile::getForm(path);
    auto file = std::make_unique<MigrationReportFile>(path, form, isContinued);
    if (!file->getFailure().empty()) {
        throw EnvironmentError(path + ": the report " + file->getFailure());
    }
    if (form == ReportForm::Lines && !isContinued) {
        file->writeHead(mOptions.describe());
    }
    return file;
}

ExitCode MigrateCommand::run(Channels& channels) {
    mOptions.check();
    if (std::string failure; mOptions.mMigration.isRendered() && RenderModule::createRenderer(failure) == nullptr) {
        throw EnvironmentError(failure);
    }
    InputSet inputs = findInputs();
    EarlierReport earlier(mOptions.mReportPath.value_or(""), mOptions.describe());
    const bool isContinued = mOptions.mIsResumed && earlier.takeFrom(inputs);
    mOptions.mMigration.mInputs = &inputs;
    openLogFile(channels.mLog);
    const std::unique_ptr<MigrationReportFile> reportFile = openReport(isContinued);
    const ReportForm form =
        mOptions.mReportPath ? MigrationReportFile::getForm(*mOptions.mReportPath) : ReportForm::None;

    Console& console = channels.mConsole;
    const StopSignal stopSignal;
    Progress progress(inputs.size(), mOptions.getProgressForm(console.isErrorTerminal()));
    MigrationReportText reportText(console, mOptions.mIsQuiet, mOptions.isStandardOutputTaken());
    MigrationCounts counts = earlier.getCounts();
    ExitCode outcome = earlier.getOutcome();
    std::size_t done = 0;
    std::atomic<bool> isOutputGone = false;

    BatchRun batch{inputs, mOptions.mMigration, DocumentReporter(form, mOptions.mIsVerbose)};
    batch.mNeedsFacts = form == ReportForm::Lines;
    batch.mJobs = mOptions.getJobs(inputs.size());
    batch.mTimeLimit = mOptions.mTimeLimit;
    batch.mSandbox = mOptions.mSandbox;
    batch.mPlaces.mReadFolders = inputs.getFolders();
    if (mOptions.mMigration.mRasterFolder) {
        batch.mPlaces.mReadFolders.insert(*mOptions.mMigration.mRasterFolder);
    }
    if (!mOptions.mMigration.isToStandardOutput()) {
        batch.mPlaces.mWriteFolder = mOptions.mMigration.mOutput;
    }
    batch.mOnDone = [&](const DocumentReport& report) {
        if (form == ReportForm::Lines && !report.mIsStopped) {
            reportFile->add(report);
        }
    };
    batch.mOnTurn = [&](const DocumentReport& report) {
        done += report.mIsStopped ? 0U : 1U;
        outcome = worst(outcome, report.mOutcome);
        counts.add(report.mCounts);
        console.out().write(report.mText);
        isOutputGone = mOptions.mMigration.isToStandardOutput() && console.out().getError() != 0;
        if (MigrationReportText::hasMessages(report)) {
            progress.clear();
        }
        reportText.add(report);
        if (form == ReportForm::Whole) {
            reportFile->add(report);
        }
        progress.advance();
    };
    batch.mIsEnough = [&] { return isOutputGone || StopSignal::getPending() != 0; };
    if (!mOptions.mIsIsolated || !IsolatedRun::run(batch)) {
        ThreadedRun::run(batch);
    }

    progress.finish();
    const int signal = StopSignal::getPending();
    if (signal != 0) {
        outcome = signal == SIGTERM ? ExitCode::Terminated : ExitCode::Interrupted;
    }
    if (signal == 0 && counts.mDocuments == 0 && counts.mSkippedFiles != 0) {
        console.tell("ktannot: no document was found: " + countOf(counts.mSkippedFiles, "*.json file") +
                     " without a view map");
        outcome = ExitCode::WrongUsage;
    }
    if (reportFile != nullptr) {
        if (const std::string failure = reportFile->finish(counts, outcome); !failure.empty()) {
            console.tell(makeTerminalText(*mOptions.mReportPath) + ": " + failure);
            outcome = worst(outcome, ExitCode::EnvironmentFailed);
        }
    }
    reportText.finish(counts, mOptions.mMigration.mOutput, mOptions.mMigration.mIsDryRun,
                      inputs.getPassedOver().describe());
    if (signal != 0) {
        console.tell("interrupted after " + std::to_string(done) + " of " + std::to_string(inputs.size()) +
                     " documents; what was written is whole. " +
                     (form == ReportForm::Lines ? "--resume" : "--skip-existing") + " goes on from here");
    }
    return outcome;
}

}  // namespace ktannot
