#include "tools/ktannot/commands/MigrateCommand.h"

#include "platform/svg/SvgWriter.h"
#include "tools/ktannot/EnvironmentError.h"
#include "tools/ktannot/UsageError.h"
#include "tools/ktannot/batch/DocumentMigrator.h"
#include "tools/ktannot/batch/MetadataAcceptance.h"
#include "tools/ktannot/batch/OutputCheck.h"
#include "tools/ktannot/batch/StopSignal.h"
#include "tools/ktannot/console/ProgressBar.h"
#include "tools/ktannot/console/TerminalText.h"
#include "tools/ktannot/console/TextOutput.h"
#include "tools/ktannot/files/SideOutput.h"
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
#include <filesystem>
#include <limits>
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
void migrateAll(const InputSet& inputs, const MigrationOptions& options, int jobs, const Receive& receive,
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

void MigrateCommand::declareOptions(CLI::App& app) {
    app.add_option("INPUT", mInputs, "Files, folders (searched for *.kts and *.json) or - for standard input")
        ->type_name("");
    app.add_option("--files-from", mInputOptions.mListPath, "A file with more inputs, one a line; - is standard input")
        ->type_name("FILE");
    app.add_flag("-0", mInputOptions.mIsListNulSeparated, "The entries of that list end with a NUL byte")
        ->needs("--files-from");
    app.add_option("--base", mInputOptions.mBase, "Folder below which results mirror the paths of the inputs")
        ->type_name("DIR");
    app.add_option("--shard", mShardText, "Only the I-th of N parts of the inputs, for many machines")
        ->type_name("I/N");
    app.add_option("--view", mOptions.mView, "Only the view with that number of each document")
        ->type_name("N")
        ->check(CLI::Range(std::size_t{1}, std::numeric_limits<std::size_t>::max()).description(""));
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
    app.add_option("--raster-dir", mOptions.mRasterFolder,
                   "Where pictures are looked up by name; without it the document's folder and its folder images")
        ->type_name("DIR");
    app.add_option("--text", mTextModeName, "text: searchable text; outlines: paths, the same with any font")
        ->check(CLI::IsMember({"text", "outlines"}))
        ->capture_default_str();
    app.add_option("--background", mOptions.mBackground, "Colour of the page: a word, #RGB or #RRGGBB; without it none")
        ->type_name("COLOR");
    app.add_option("--picture-background", mPictureBackgroundName,
                   "What is drawn beneath pictures: none, so that line art is seen, or black, as the model has it")
        ->check(CLI::IsMember({"none", "black"}))
        ->capture_default_str();
    app.add_option("-j,--jobs", mJobs, "Documents worked on at the same time; without it one per core")
        ->type_name("N")
        ->check(CLI::Range(1, 1024));
    app.add_option("--report", mReportPath, "Write a report of the whole batch for programs")->type_name("FILE");
    auto* force = app.add_flag("--force", mIsForced, "Replace drawings that are there already");
    app.add_flag("--skip-existing", mIsSkipping, "Keep drawings that are there already and make the others")
        ->excludes(force);
    app.add_flag("--dry-run", mOptions.mIsDryRun, "Do everything but write results, and tell what would be written");
    declareMemoryLimit(app, mOptions.mMemoryLimit);
    auto* quiet = app.add_flag("-q,--quiet", mIsQuiet, "Tell only what went wrong");
    app.add_flag("-v,--verbose", mIsVerbose, "Name every drawing")->excludes(quiet);
    app.add_option("--log-file", mLogPath, "Append the log to a file")->type_name("FILE");
}

void MigrateCommand::checkOptions() {
    if (mInputs.empty() && !mInputOptions.mListPath) {
        throw UsageError("INPUT is required: name documents or folders, or a list of them with --files-from");
    }
    if (!mShardText.empty()) {
        parseShard();
    }
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
    mOptions.mFormat = mFormatName == "json" ? MigrationOptions::Format::Json : MigrationOptions::Format::Svg;
    mOptions.mHasTextOutlines = mTextModeName == "outlines";
    mOptions.mDrawsPictureBackgrounds = mPictureBackgroundName == "black";
    if (!mOptions.mBackground.empty() && !kt::svg::SvgWriter::isColor(mOptions.mBackground)) {
        throw UsageError("--background takes a colour such as white or #F8F8F0, not '" +
                         makeTerminalText(mOptions.mBackground) + "'");
    }
    if (mIsForced) {
        mOptions.mExisting = MigrationOptions::Existing::Replace;
    } else if (mIsSkipping) {
        mOptions.mExisting = MigrationOptions::Existing::Skip;
    }
}

void MigrateCommand::parseShard() {
    const char* end = mShardText.data() + mShardText.size();
    const auto [slash, shardError] = std::from_chars(mShardText.data(), end, mShard);
    if (shardError == std::errc() && slash != end && *slash == '/') {
        const auto [parsed, shardsError] = std::from_chars(slash + 1, end, mShards);
        if (shardsError == std::errc() && parsed == end && mShard >= 1 && mShard <= mShards) {
            return;
        }
    }
    throw UsageError("--shard takes I/N with I from 1 to N, for example 1/7, not '" + mShardText + "'");
}

void MigrateCommand::refuseSharedPlaces(const InputSet& inputs) const {
    if (mOptions.isToStandardOutput()) {
        return;
    }
    if (const auto namesakes = inputs.findNamesakes()) {
        const auto& [one, other] = *namesakes;
        throw UsageError("'" + one.mSource + "' and '" + other.mSource + "' would both be written to '" +
                         mOptions.getPlace(one.mDocumentName) +
                         "': mirror their paths with --base DIR, or give each an --output of its own");
    }
}

void MigrateCommand::checkOutputs(const InputSet& inputs) const {
    const OutputCheck check(inputs, mIsForced);
    std::vector<std::string> onStandardOutput;
    const auto add = [&](const std::string& option, const std::string& path) {
        if (SideOutput::isStandardOutput(path)) {
            onStandardOutput.push_back(option);
        }
    };
    add("-o", mOptions.mOutput);
    if (mReportPath) {
        check.checkReport("--report", *mReportPath);
        add("--report", *mReportPath);
    }
    if (mLogPath) {
        check.checkLog("--log-file", *mLogPath);
        add("--log-file", *mLogPath);
    }
    if (onStandardOutput.size() > 1) {
        throw UsageError(onStandardOutput[0] + " and " + onStandardOutput[1] +
                         " cannot both go to standard output; name a file for one of them");
    }
    if (mReportPath && mLogPath && FileIdentity::of(*mReportPath) &&
        FileIdentity::of(*mReportPath) == FileIdentity::of(*mLogPath)) {
        throw UsageError("--report and --log-file name the same file");
    }
    if (mOptions.mRasterFolder && !std::filesystem::is_directory(*mOptions.mRasterFolder)) {
        throw UsageError("--raster-dir takes a folder that is there, not '" + *mOptions.mRasterFolder + "'");
    }
    if (!mOptions.isToStandardOutput() && !mOptions.mIsDryRun) {
        check.checkFolder(mOptions.mOutput);
    }
}

bool MigrateCommand::isStandardOutputTaken() const {
    return mOptions.isToStandardOutput() || (mReportPath && SideOutput::isStandardOutput(*mReportPath)) ||
           (mLogPath && SideOutput::isStandardOutput(*mLogPath));
}

void MigrateCommand::openLogFile(DocumentLog& log) const {
    if (!mLogPath) {
        return;
    }
    log.setThreshold(kt::ktLog::Debug);
    const auto file = std::make_shared<SideOutput>(*mLogPath, SideOutput::Way::Append);
    if (!file->getFailure().empty()) {
        throw EnvironmentError(*mLogPath + ": the log file " + file->getFailure());
    }
    const auto text = std::make_shared<TextOutput>(file->getDescriptor());
    log.setListener([file, text](const kt::ktLogEntry& entry) {
        text->write(std::to_string(entry.mMilliseconds) + " [" + std::to_string(entry.mType) + "] " +
                    makeTerminalText(entry.mMessage) + "\n");
        text->flush();
    });
}

ExitCode MigrateCommand::run(Channels& channels) {
    checkOptions();
    InputSet inputs(mInputs, mInputOptions);
    if (mOptions.isToStandardOutput() && !mOptions.isDump() && inputs.size() > 1) {
        throw UsageError("-o - writes one drawing, and there are " + std::to_string(inputs.size()) +
                         " documents: name one, or a folder for all with -o");
    }
    refuseSharedPlaces(inputs);
    checkOutputs(inputs);
    inputs.keepShard(mShard, mShards);
    mOptions.mInputs = &inputs;

    Console& console = channels.mConsole;
    openLogFile(channels.mLog);
    std::unique_ptr<MigrationReportFile> reportFile;
    if (mReportPath) {
        reportFile = std::make_unique<MigrationReportFile>(*mReportPath);
        if (!reportFile->getFailure().empty()) {
            throw EnvironmentError(*mReportPath + ": the report " + reportFile->getFailure());
        }
    }

    const StopSignal stopSignal;
    const std::size_t total = inputs.size();
    ProgressBar progress(total, console.isErrorTerminal() && !mIsQuiet);
    MigrationReportText reportText(console, mIsQuiet, mIsVerbose, isStandardOutputTaken());
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
    migrateAll(inputs, mOptions, jobs, receive, [&] { return isOutputGone || StopSignal::getPending() != 0; });

    progress.clear();
    const int signal = StopSignal::getPending();
    if (signal != 0) {
        outcome = signal == SIGTERM ? ExitCode::Terminated : ExitCode::Interrupted;
    }
    if (reportFile != nullptr) {
        if (const std::string failure = reportFile->finish(counts, outcome); !failure.empty()) {
            console.tell(makeTerminalText(*mReportPath) + ": " + failure);
            outcome = worst(outcome, ExitCode::EnvironmentFailed);
        }
    }
    reportText.finish(counts, mOptions.mOutput, mOptions.mIsDryRun, inputs.getPassedOver().describe());
    if (signal != 0) {
        console.tell("interrupted after " + std::to_string(done) + " of " + std::to_string(total) +
                     " documents; what was written is whole. --skip-existing goes on from here");
    }
    return outcome;
}

}  // namespace ktannot
