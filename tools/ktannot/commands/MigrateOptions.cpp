#include "tools/ktannot/commands/MigrateOptions.h"

#include "platform/svg/SvgWriter.h"
#include "tools/ktannot/EnvironmentError.h"
#include "tools/ktannot/UsageError.h"
#include "tools/ktannot/batch/AcceptedLosses.h"
#include "tools/ktannot/batch/OutputCheck.h"
#include "tools/ktannot/commands/Command.h"
#include "tools/ktannot/console/TextOutput.h"
#include "tools/ktannot/files/SideOutput.h"
#include "tools/ktannot/report/JsonWriter.h"
#include "tools/ktannot/report/MigrationReportFile.h"

#include <CLI/CLI.hpp>
#include <sched.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <limits>

namespace ktannot {

namespace {

constexpr const char* sInput = "Input";
constexpr const char* sLeftOut = "What may be left out";
constexpr const char* sOutput = "Output";
constexpr const char* sTold = "What is told";
constexpr const char* sLimits = "Limits";

int countProcessors() {
    cpu_set_t processors;
    return sched_getaffinity(0, sizeof(processors), &processors) == 0 ? CPU_COUNT(&processors) : 1;
}

}  // namespace

void MigrateOptions::declare(CLI::App& app) {
    app.get_help_ptr()->group(sTold);
    declareInput(app);
    declareOutput(app);
    declareTold(app);
    declareLimits(app);
}

void MigrateOptions::declareInput(CLI::App& app) {
    app.add_option("INPUT", mInputs, "Files, folders (searched for *.kts and *.json) or - for standard input")
        ->type_name("");
    app.add_option("--files-from", mInputOptions.mListPath, "A file with more inputs, one a line; - is standard input")
        ->type_name("FILE")
        ->group(sInput);
    app.add_flag("-0", mInputOptions.mIsListNulSeparated, "The entries of that list end with a NUL byte")
        ->needs("--files-from")
        ->group(sInput);
    app.add_option("--base", mInputOptions.mBase, "Folder below which results mirror the paths of the inputs")
        ->type_name("DIR")
        ->group(sInput);
    app.add_option("--shard", mShardText, "Only the I-th of N parts of the inputs, for many machines")
        ->type_name("I/N")
        ->group(sInput);
    app.add_flag("--resume", mIsResumed, "Go on where the run that wrote --report FILE.jsonl ended")->group(sInput);
    app.add_option("--view", mMigration.mView, "Only the view with that number of each document")
        ->type_name("N")
        ->check(CLI::Range(std::size_t{1}, std::numeric_limits<std::size_t>::max()).description(""))
        ->group(sInput);
    app.add_option("--raster-dir", mMigration.mRasterFolder,
                   "Where pictures are looked up by name; without it the document's folder and its folder images")
        ->type_name("DIR")
        ->group(sInput);
    app.add_option("--accept", mAcceptedWords,
                   "What drawings may lack: view-metadata, known-metadata, other-metadata or all of them, "
                   "missing-pictures, failed-annotations, with commas between them; what lacks more is refused")
        ->type_name("WORDS")
        ->group(sLeftOut);
}

void MigrateOptions::declareOutput(CLI::App& app) {
    app.add_option("-o,--output", mMigration.mOutput, "Folder for the results, or - for standard output")
        ->type_name("DIR")
        ->capture_default_str()
        ->group(sOutput);
    app.add_option(
           "--format", mFormatName,
           "svg or png: one drawing per view; pdf: one file per document, a page per view; json: one dump of the "
           "new model per document")
        ->check(CLI::IsMember({"svg", "json", "pdf", "png"}))
        ->capture_default_str()
        ->group(sOutput);
    app.add_option("--dpi", mMigration.mDotsPerInch, "Pixels to an inch of the pictures of --format png")
        ->type_name("N")
        ->check(CLI::Range(1.0, 10000.0).description(""))
        ->capture_default_str()
        ->group(sOutput);
    app.add_option("--text", mTextModeName, "text: searchable text; outlines: paths, the same with any font")
        ->check(CLI::IsMember({"text", "outlines"}))
        ->capture_default_str()
        ->group(sOutput);
    app.add_option("--background", mMigration.mBackground,
                   "Colour of the page: a word, #RGB or #RRGGBB; without it none")
        ->type_name("COLOR")
        ->group(sOutput);
    app.add_option("--picture-background", mPictureBackgroundName,
                   "What is drawn beneath pictures: none, so that line art is seen, or black, as the model has it")
        ->check(CLI::IsMember({"none", "black"}))
        ->capture_default_str()
        ->group(sOutput);
    app.add_option("--head-size", mHeadSize, "Size of leader heads in millimetres")
        ->type_name("S")
        ->capture_default_str()
        ->group(sOutput);
    auto* force = app.add_flag("--force", mIsForced, "Replace drawings that are there already")->group(sOutput);
    app.add_flag("--skip-existing", mIsSkipping, "Keep drawings that are there already and make the others")
        ->excludes(force)
        ->group(sOutput);
    app.add_flag("--durable", mMigration.mIsDurable, "Wait until each result is on the disk")->group(sOutput);
    app.add_flag("--dry-run", mMigration.mIsDryRun, "Do everything but write results, and tell what would be written")
        ->group(sOutput);
}

void MigrateOptions::declareTold(CLI::App& app) {
    app.add_option("--report", mReportPath,
                   "Write a report of the whole batch for programs; FILE.jsonl: a line for each document at once")
        ->type_name("FILE")
        ->group(sTold);
    app.add_option("--log-file", mLogPath, "Append the log to a file")->type_name("FILE")->group(sTold);
    app.add_option("--progress", mProgressName,
                   "auto: a bar on a terminal; none; plain: lines now and then; json: the same for programs")
        ->check(CLI::IsMember({"auto", "none", "plain", "json"}))
        ->capture_default_str()
        ->group(sTold);
    auto* quiet = app.add_flag("-q,--quiet", mIsQuiet, "Tell only what went wrong")->group(sTold);
    app.add_flag("-v,--verbose", mIsVerbose, "Name every drawing")->excludes(quiet)->group(sTold);
}

void MigrateOptions::declareLimits(CLI::App& app) {
    app.add_option("-j,--jobs", mJobs, "Documents worked on at the same time; without it one per core")
        ->type_name("N")
        ->check(CLI::Range(1, 1024))
        ->group(sLimits);
    Command::declareMemoryLimit(app, mMigration.mMemoryLimit)->group(sLimits);
    app.add_option("--time-limit", mTimeLimitSeconds, "Seconds that one document may take; 0: any time")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.0, 1e9).description(""))
        ->capture_default_str()
        ->group(sLimits);
    app.add_option("--isolate", mIsolateName, "auto: in processes that may die without the batch; off: in threads")
        ->check(CLI::IsMember({"auto", "off"}))
        ->capture_default_str()
        ->group(sLimits);
    app.add_option("--sandbox", mSandboxName,
                   "auto: these processes touch nothing else where the kernel can shut them in; off; require: or fail")
        ->check(CLI::IsMember({"auto", "off", "require"}))
        ->capture_default_str()
        ->group(sLimits);
}

void MigrateOptions::check() {
    if (mInputs.empty() && !mInputOptions.mListPath) {
        throw UsageError("INPUT is required: name documents or folders, or a list of them with --files-from");
    }
    if (!mShardText.empty()) {
        parseShard();
    }
    const std::optional<int> accepted = parseAcceptedLosses(mAcceptedWords);
    if (!mAcceptedWords.empty() && !accepted) {
        throw UsageError(
            "--accept takes view-metadata, known-metadata, other-metadata, all, missing-pictures or "
            "failed-annotations, not '" +
            mAcceptedWords + "'");
    }
    mMigration.mAcceptedLosses = accepted.value_or(0);
    mMigration.mHeadSize = static_cast<float>(mHeadSize);
    if (!std::isfinite(mMigration.mHeadSize) || !(mMigration.mHeadSize > 0.0F)) {
        throw UsageError("--head-size takes a finite number above 0");
    }
    if (mMigration.mOutput.empty()) {
        throw UsageError("--output takes a folder, or - for standard output");
    }
    using Format = MigrationOptions::Format;
    mMigration.mFormat = mFormatName == "json"  ? Format::Json
                         : mFormatName == "pdf" ? Format::Pdf
                         : mFormatName == "png" ? Format::Png
                                                : Format::Svg;
    mMigration.mHasTextOutlines = mTextModeName == "outlines";
    mMigration.mDrawsPictureBackgrounds = mPictureBackgroundName == "black";
    if (!mMigration.mBackground.empty() && !kt::svg::SvgWriter::isColor(mMigration.mBackground)) {
        throw UsageError("--background takes a colour such as white or #F8F8F0, not '" + mMigration.mBackground + "'");
    }
    if (mIsResumed && (!mReportPath || MigrationReportFile::getForm(*mReportPath) != ReportForm::Lines)) {
        throw UsageError("--resume goes on with the report of an earlier run: name it with --report FILE.jsonl");
    }
    if (mIsForced || (mIsResumed && !mIsSkipping)) {
        // A run that was killed may have left drawings of which its report does not tell.
        mMigration.mExisting = MigrationOptions::Existing::Replace;
    } else if (mIsSkipping) {
        mMigration.mExisting = MigrationOptions::Existing::Skip;
    }
    mTimeLimit = std::chrono::milliseconds(std::llround(mTimeLimitSeconds * 1000.0));
    mIsIsolated = mIsolateName == "auto";
    if (mSandboxName == "off") {
        mSandbox = Sandbox::Mode::Off;
    } else if (mSandboxName == "require") {
        mSandbox = Sandbox::Mode::Require;
        if (!mIsIsolated) {
            throw UsageError("--sandbox require shuts worker processes in, and --isolate off makes none");
        }
        if (!Sandbox::isSupported()) {
            throw EnvironmentError("this kernel cannot shut processes in (it has no Landlock); --sandbox off does " +
                                   std::string("without that"));
        }
    }
}

void MigrateOptions::parseShard() {
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

void MigrateOptions::refuseSharedPlaces(const InputSet& inputs) const {
    if (mMigration.isToStandardOutput()) {
        return;
    }
    if (const auto namesakes = inputs.findNamesakes()) {
        const auto& [one, other] = *namesakes;
        throw UsageError("'" + one.mSource + "' and '" + other.mSource + "' would both be written to '" +
                         mMigration.getPlace(one.mDocumentName) +
                         "': mirror their paths with --base DIR, or give each an --output of its own");
    }
}

void MigrateOptions::checkPlaces(const InputSet& inputs) const {
    refuseSharedPlaces(inputs);
    const OutputCheck check(inputs, mIsForced);
    std::vector<std::string> onStandardOutput;
    const auto add = [&](const std::string& option, const std::string& path) {
        if (SideOutput::isStandardOutput(path)) {
            onStandardOutput.push_back(option);
        }
    };
    add("-o", mMigration.mOutput);
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
    if (mMigration.mRasterFolder && !std::filesystem::is_directory(*mMigration.mRasterFolder)) {
        throw UsageError("--raster-dir takes a folder that is there, not '" + *mMigration.mRasterFolder + "'");
    }
    if (!mMigration.isToStandardOutput() && !mMigration.mIsDryRun) {
        check.checkFolder(mMigration.mOutput);
    }
}

bool MigrateOptions::isStandardOutputTaken() const {
    return mMigration.isToStandardOutput() || (mReportPath && SideOutput::isStandardOutput(*mReportPath)) ||
           (mLogPath && SideOutput::isStandardOutput(*mLogPath));
}

std::string MigrateOptions::describe() const {
    TextOutput text;
    JsonWriter json(text);
    json.beginObject();
    json.key("output").text(mMigration.mOutput);
    json.key("format").text(mFormatName);
    json.key("text").text(mTextModeName);
    json.key("headSize").number(mMigration.mHeadSize);
    json.key("background").text(mMigration.mBackground);
    json.key("pictureBackground").text(mPictureBackgroundName);
    json.key("rasterDir").text(mMigration.mRasterFolder.value_or(""));
    json.key("accept").text(mAcceptedWords);
    json.key("base").text(mInputOptions.mBase.value_or(""));
    json.key("shard").text(mShardText);
    json.key("view").number(mMigration.mView);
    json.key("dryRun").boolean(mMigration.mIsDryRun);
    json.endObject();
    return text.takeText();
}

Progress::Form MigrateOptions::getProgressForm(bool isTerminal) const {
    if (mProgressName == "plain") {
        return Progress::Form::Plain;
    }
    if (mProgressName == "json") {
        return Progress::Form::Json;
    }
    return mProgressName == "auto" && isTerminal && !mIsQuiet ? Progress::Form::Bar : Progress::Form::None;
}

int MigrateOptions::getJobs(std::size_t documents) const {
    const int jobs = mJobs > 0 ? mJobs : countProcessors();
    return static_cast<int>(std::clamp<std::size_t>(documents, 1, static_cast<std::size_t>(jobs)));
}

}  // namespace ktannot
