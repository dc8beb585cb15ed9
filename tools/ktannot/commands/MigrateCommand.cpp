#include "tools/ktannot/commands/MigrateCommand.h"

#include "tools/ktannot/UsageError.h"
#include "tools/ktannot/batch/DocumentMigrator.h"
#include "tools/ktannot/batch/MetadataAcceptance.h"
#include "tools/ktannot/batch/StopSignal.h"
#include "tools/ktannot/console/ProgressBar.h"
#include "tools/ktannot/console/TerminalText.h"
#include "tools/ktannot/report/MigrationCounts.h"
#include "tools/ktannot/report/MigrationReportFile.h"
#include "tools/ktannot/report/MigrationReportText.h"

#include <CLI/CLI.hpp>
#include <oneapi/tbb/enumerable_thread_specific.h>
#include <oneapi/tbb/global_control.h>
#include <oneapi/tbb/info.h>
#include <oneapi/tbb/parallel_pipeline.h>
#include <oneapi/tbb/task_arena.h>

#include <atomic>
#include <charconv>
#include <cmath>
#include <csignal>
#include <exception>
#include <fstream>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <utility>

namespace ktannot {

namespace {

/// Stack of the threads that read documents: the deepest tree that is read needs a part of it even in sanitizer builds.
/// Not more than what main threads usually have: one with half of it or less would only wait for the others, spinning.
constexpr std::size_t sThreadStackSize = std::size_t{8} * 1024 * 1024;

/// A document whose migration threw: nothing of it can be told but why.
DocumentResult makeFailedResult(const Input& input, ExitCode outcome, std::string reason) {
    Input failed = input;
    failed.mFailure = std::move(reason);
    DocumentResult result(LegacyDocument::load(failed));
    result.mOutcome = outcome;
    return result;
}

DocumentResult migrateSafely(DocumentMigrator& migrator, const Input& input) {
    try {
        return migrator.migrate(input);
    } catch (const std::bad_alloc&) {
        return makeFailedResult(input, ExitCode::LimitReached, "not enough memory for this document");
    } catch (const std::exception& exception) {
        return makeFailedResult(input, ExitCode::InternalError,
                                std::string("internal error, please report it: ") + exception.what());
    }
}

/// Runs the documents through the migrators, several at once, and hands the results on in the order of the inputs. Only
/// a few results exist at any time, so that memory does not grow with the number of documents.
/// @param receive  called on one thread at a time.
/// @param isDone   asked before each document, on one thread at a time: whether no more are wanted.
template <typename Receive, typename IsDone>
void migrateAll(const std::vector<Input>& inputs, const MigrationOptions& options, int jobs, const Receive& receive,
                const IsDone& isDone) {
    namespace tbb = oneapi::tbb;
    const tbb::global_control stackSize(tbb::global_control::thread_stack_size, sThreadStackSize);
    const tbb::global_control parallelism(tbb::global_control::max_allowed_parallelism, static_cast<std::size_t>(jobs));
    tbb::enumerable_thread_specific<std::unique_ptr<DocumentMigrator>> migrators(
        [&options] { return std::make_unique<DocumentMigrator>(options); });

    std::size_t next = 0;
    const auto takeInput = [&](tbb::flow_control& control) -> std::size_t {
        if (next == inputs.size() || isDone()) {
            control.stop();
            return next;
        }
        return next++;
    };
    const auto migrate = [&](std::size_t index) {
        return std::make_shared<DocumentResult>(migrateSafely(*migrators.local(), inputs[index]));
    };
    using Result = std::shared_ptr<DocumentResult>;
    tbb::task_arena arena(jobs);
    arena.execute([&] {
        tbb::parallel_pipeline(
            2 * static_cast<std::size_t>(jobs),
            tbb::make_filter<void, std::size_t>(tbb::filter_mode::serial_in_order, takeInput) &
                tbb::make_filter<std::size_t, Result>(tbb::filter_mode::parallel, migrate) &
                tbb::make_filter<Result, void>(tbb::filter_mode::serial_in_order,
                                               [&receive](const Result& result) { receive(*result); }));
    });
}

}  // namespace

std::string MigrateCommand::getDetails() const {
    return "Examples:\n"
           "  ktannot migrate archive/                     every document below archive/ to migrated/\n"
           "  ktannot migrate a.kts b.json -o drawings     two documents to drawings/\n"
           "  ktannot migrate archive/ --accept all        also what carries metadata, which drawings cannot keep\n"
           "  ktannot migrate note.kts -o - > note.svg     the drawing to standard output\n"
           "  ktannot migrate archive/ --report done.json --skip-existing\n"
           "                                               go on where an earlier run ended, and report for programs\n"
           "\n"
           "Drawings go to DIR/<document>/<NNN>-<view>.svg. Nothing is overwritten and no metadata is dropped "
           "unasked.\n"
           "\n" +
           getExitCodeText();
}

void MigrateCommand::declareOptions(CLI::App& app) {
    declareInputs(app, mInputs);
    app.add_option("-o,--output", mOptions.mOutput, "Folder for the results, or - for standard output")
        ->type_name("DIR")
        ->capture_default_str();
    app.add_option("--format", mFormatName, "svg: one drawing per view; json: one dump of the new model per document")
        ->check(CLI::IsMember({"svg", "json"}))
        ->capture_default_str();
    app.add_option("--accept", mAcceptedWords,
                   "Legacy metadata that may be dropped: view-metadata, known-metadata, other-metadata, with commas "
                   "between them, or all; what carries other metadata is refused")
        ->type_name("WORDS");
    app.add_option("--head-size", mHeadSize, "Size of leader heads in millimetres")
        ->type_name("S")
        ->capture_default_str();
    app.add_option("--raster-dir", mRasterFolder,
                   "Where pictures are looked up by name; without it the document's folder and its folder images")
        ->type_name("DIR");
    app.add_option("--text", mTextModeName, "text: searchable text; outlines: paths, the same with any font")
        ->check(CLI::IsMember({"text", "outlines"}))
        ->capture_default_str();
    app.add_option("-j,--jobs", mJobs, "Documents worked on at the same time; without it one per core")
        ->type_name("N")
        ->check(CLI::Range(1, 1024));
    app.add_option("--report", mReportPath, "Write a report of the whole batch for programs")->type_name("FILE");
    auto* force = app.add_flag("--force", mIsForced, "Replace drawings that are there already");
    app.add_flag("--skip-existing", mIsSkipping, "Keep drawings that are there already and make the others")
        ->excludes(force);
    declareMemoryLimit(app, mOptions.mMemoryLimit);
    auto* quiet = app.add_flag("-q,--quiet", mIsQuiet, "Tell only what went wrong");
    app.add_flag("-v,--verbose", mVerbosity, "Name every drawing; twice: log details too")->excludes(quiet);
    app.add_option("--log-file", mLogPath, "Append the log to a file")->type_name("FILE");
}

void MigrateCommand::checkOptions() {
    const std::optional<int> accepted = MetadataAcceptance::parse(mAcceptedWords);
    if (!mAcceptedWords.empty() && !accepted) {
        throw UsageError("--accept takes view-metadata, known-metadata, other-metadata or all, not '" +
                         makeTerminalText(mAcceptedWords) + "'");
    }
    mOptions.mAcceptedMetadata = accepted.value_or(0);
    mOptions.mHeadSize = static_cast<float>(mHeadSize);
    if (!std::isfinite(mOptions.mHeadSize) || !(mOptions.mHeadSize > 0.0F)) {
        throw UsageError("--head-size takes a finite number above 0");
    }
    if (mOptions.mOutput.empty()) {
        throw UsageError("--output takes a folder, or - for standard output");
    }
    if (!mRasterFolder.empty()) {
        mOptions.mRasterFolder = mRasterFolder;
    }
    mOptions.mFormat = mFormatName == "json" ? MigrationOptions::Format::Json : MigrationOptions::Format::Svg;
    mOptions.mHasTextOutlines = mTextModeName == "outlines";
    if (mIsForced) {
        mOptions.mExisting = MigrationOptions::Existing::Replace;
    } else if (mIsSkipping) {
        mOptions.mExisting = MigrationOptions::Existing::Skip;
    }
}

void MigrateCommand::refuseSharedPlaces(const InputSet& inputs) const {
    if (mOptions.isToStandardOutput()) {
        return;
    }
    std::map<std::string, const Input*> byName;
    for (const Input& input : inputs.getInputs()) {
        if (!input.mFailure.empty()) {
            continue;
        }
        const auto [other, isNew] = byName.try_emplace(input.mDocumentName, &input);
        if (!isNew) {
            throw UsageError("'" + makeTerminalText(other->second->mSource) + "' and '" +
                             makeTerminalText(input.mSource) + "' would both be written to '" +
                             makeTerminalText(mOptions.getPlace(input.mDocumentName)) +
                             "': migrate them one by one, each with an --output of its own");
        }
    }
}

bool MigrateCommand::openLogFile(DocumentLog& log) const {
    if (mVerbosity > 1 || !mLogPath.empty()) {
        log.setThreshold(kt::ktLog::Debug);
    }
    if (mLogPath.empty()) {
        return true;
    }
    const auto file = std::make_shared<std::ofstream>(mLogPath, std::ios::app | std::ios::binary);
    if (!*file) {
        return false;
    }
    log.setListener([file](const kt::ktLogEntry& entry) {
        *file << entry.mMilliseconds << " [" << entry.mType << "] " << makeTerminalText(entry.mMessage) << '\n'
              << std::flush;
    });
    return true;
}

ExitCode MigrateCommand::run(Surroundings& surroundings) {
    checkOptions();
    const InputSet inputs(mInputs);
    refuseSharedPlaces(inputs);

    Console& console = surroundings.mConsole;
    if (!openLogFile(surroundings.mLog)) {
        console.tell(makeTerminalText(mLogPath) + ": the log file cannot be opened");
        return ExitCode::EnvironmentFailed;
    }
    std::unique_ptr<MigrationReportFile> reportFile;
    if (!mReportPath.empty()) {
        reportFile = std::make_unique<MigrationReportFile>(mReportPath);
        if (!reportFile->getFailure().empty()) {
            console.tell(makeTerminalText(mReportPath) + ": " + reportFile->getFailure());
            return ExitCode::EnvironmentFailed;
        }
    }

    const StopSignal stopSignal;
    const std::size_t total = inputs.getInputs().size();
    ProgressBar progress(total, console.isErrorTerminal() && !mIsQuiet);
    MigrationReportText reportText(console, mIsQuiet, mVerbosity > 0, mOptions.isToStandardOutput());
    MigrationCounts counts;
    ExitCode outcome = ExitCode::AllWell;
    std::size_t done = 0;

    const int jobs = mJobs > 0 ? mJobs : oneapi::tbb::info::default_concurrency();
    std::atomic<bool> isOutputGone = false;
    const auto receive = [&](const DocumentResult& result) {
        done += result.mIsStopped ? 0U : 1U;
        outcome = worst(outcome, result.mOutcome);
        counts.add(result);
        console.out().write(result.mText);
        isOutputGone = mOptions.isToStandardOutput() && console.out().getError() != 0;
        if (MigrationReportText::hasFindings(result)) {
            progress.clear();
        }
        reportText.add(result);
        if (reportFile != nullptr) {
            reportFile->add(result);
        }
        progress.advance();
    };
    migrateAll(inputs.getInputs(), mOptions, jobs, receive,
               [&] { return isOutputGone || StopSignal::getPending() != 0; });

    progress.clear();
    const int signal = StopSignal::getPending();
    if (signal != 0) {
        outcome = signal == SIGTERM ? ExitCode::Terminated : ExitCode::Interrupted;
    }
    if (reportFile != nullptr) {
        if (const std::string failure = reportFile->finish(counts, outcome); !failure.empty()) {
            console.tell(makeTerminalText(mReportPath) + ": " + failure);
            outcome = worst(outcome, ExitCode::EnvironmentFailed);
        }
    }
    reportText.finish(counts, mOptions.mOutput);
    if (signal != 0) {
        console.tell("interrupted after " + std::to_string(done) + " of " + std::to_string(total) +
                     " documents; what was written is whole. --skip-existing goes on from here");
    }
    return outcome;
}

}  // namespace ktannot
