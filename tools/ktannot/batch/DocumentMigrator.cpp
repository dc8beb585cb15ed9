#include "tools/ktannot/batch/DocumentMigrator.h"

#include "tools/ktannot/DocumentLog.h"
#include "tools/ktannot/NestedLeaders.h"
#include "tools/ktannot/batch/MetadataAcceptance.h"
#include "tools/ktannot/batch/ResultFile.h"
#include "tools/ktannot/batch/StopSignal.h"
#include "tools/ktannot/console/TextOutput.h"
#include "tools/ktannot/files/SafeName.h"
#include "tools/ktannot/report/CadJson.h"
#include "tools/ktannot/report/JsonWriter.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>
#include <system_error>

namespace ktannot {

namespace {

std::vector<std::string> getPictureFolders(const MigrationOptions& options, const Input& input) {
    if (options.mRasterFolder) {
        return {*options.mRasterFolder + "/."};
    }
    const std::filesystem::path folder = std::filesystem::path(input.mPath).parent_path();
    // The document's folder may be reached by a link, but its folder "images" must not be one.
    return {(folder / ".").string(), (folder / "images").string()};
}

kt::ktCadViewSvgWriter::Options getWriterOptions(const MigrationOptions& options) {
    kt::ktCadViewSvgWriter::Options writerOptions;
    using TextMode = kt::svg::SvgWriter::TextMode;
    writerOptions.mTextMode = options.mHasTextOutlines ? TextMode::Outlines : TextMode::Text;
    writerOptions.mDrawsPictureBackgrounds = options.mDrawsPictureBackgrounds;
    writerOptions.mBackground = options.mBackground;
    return writerOptions;
}

bool exists(const std::string& path) {
    std::error_code error;
    return std::filesystem::exists(std::filesystem::symlink_status(path, error));
}

/// Whether a file holds exactly that.
bool hasContent(const std::string& path, std::string_view content) {
    std::ifstream file(path, std::ios::binary);
    std::string found(content.size() + 1, '\0');
    file.read(found.data(), static_cast<std::streamsize>(found.size()));
    return static_cast<std::size_t>(file.gcount()) == content.size() &&
           std::string_view(found).substr(0, content.size()) == content;
}

std::string getStaleness(const std::string& path) {
    return "'" + path + "' is kept, but the document gives something else now; --force replaces it";
}

/// The files of a folder that are named like drawings, sorted.
std::vector<std::string> findDrawings(const std::string& folder) {
    std::vector<std::string> found;
    std::error_code error;
    std::filesystem::directory_iterator entry(folder, error);
    while (!error && entry != std::filesystem::directory_iterator()) {
        const std::string name = entry->path().filename().string();
        const std::size_t digits = std::min(name.find_first_not_of("0123456789"), name.size());
        if (digits >= 3 && name[digits] == '-' && name.ends_with(".svg")) {
            found.push_back(folder + "/" + name);
        }
        entry.increment(error);
    }
    std::sort(found.begin(), found.end());
    return found;
}

/// Why the loader made no view: the last of its messages about it.
std::string getRefusalOfLoader(const LegacyDocument& document, const LegacyDocument::View& view) {
    return view.mMessagesEnd > view.mMessagesBegin ? document.getMessages()[view.mMessagesEnd - 1]
                                                   : "the document holds no readable view here";
}

}  // namespace

DocumentMigrator::DocumentMigrator(const MigrationOptions& options)
    : mOptions(options),
      mMigration(options.mAcceptedMetadata, provideRaster, this, options.mHeadSize),
      mWriter(getWriterOptions(options)) {}

DocumentMigrator::~DocumentMigrator() = default;

bool DocumentMigrator::provideRaster(const std::string& rasterName, std::string& rasterData, void* userData) {
    return PictureFolder::provide(rasterName, rasterData, static_cast<DocumentMigrator*>(userData)->mPictures);
}

DocumentResult DocumentMigrator::migrate(const Input& input, const ViewListener& onView) {
    DocumentResult result(LegacyDocument::load(input, mOptions.mMemoryLimit));
    result.mOutcome = result.mDocument.getOutcome();
    if (result.mDocument.isLoaded()) {
        PictureFolder pictures(getPictureFolders(mOptions, input));
        mPictures = &pictures;
        mLog.clear();
        migrateViews(input, result, onView);
        mPictures = nullptr;
    } else if (isDump() && mOptions.isToStandardOutput() &&
               result.mDocument.getState() != LegacyDocument::State::Skipped) {
        TextOutput text;
        JsonWriter json(text);
        json.beginObject();
        json.key("source").text(input.mSource);
        json.key("refused").text(result.mDocument.getReason());
        json.endObject();
        json.endLine();
        result.mText = text.takeText();
    }
    return result;
}

std::string DocumentMigrator::findWrongView(std::size_t count) const {
    if (mOptions.mView > count) {
        return "there is no view " + std::to_string(mOptions.mView) + ", it holds " + std::to_string(count);
    }
    if (mOptions.isToStandardOutput() && !isDump() && mOptions.mView == 0 && count > 1) {
        return "it holds " + std::to_string(count) +
               " views, and standard output takes one drawing: choose it with --view, or a folder for all with -o";
    }
    return {};
}

void DocumentMigrator::migrateViews(const Input& input, DocumentResult& result, const ViewListener& onView) {
    result.mReason = findWrongView(result.mDocument.getViews().size());
    if (!result.mReason.empty()) {
        result.mOutcome = mOptions.mView == 0 ? ExitCode::WrongUsage : worst(result.mOutcome, ExitCode::Refused);
        return;
    }
    const bool isTaken = planFiles(input, result);
    if (isTaken && mOptions.mExisting == MigrationOptions::Existing::Fail) {
        result.mReason = "drawings of it are in '" + mOptions.mOutput +
                         "' already: --force replaces them, --skip-existing keeps them and makes the others";
        result.mOutcome = worst(result.mOutcome, ExitCode::EnvironmentFailed);
        result.mViews.clear();
        return;
    }
    findStaleDrawings(input, result);
    std::vector<CadView> dumped;
    for (std::size_t index = 0; index < result.mViews.size(); ++index) {
        ViewResult& viewResult = result.mViews[index];
        if (!isWanted(index)) {
            viewResult.mState = ViewResult::State::Unwanted;
            continue;
        }
        if (StopSignal::getPending() != 0) {
            viewResult.mState = ViewResult::State::Stopped;
            result.mIsStopped = true;
            continue;
        }
        CadView view = migrateView(result.mDocument, result.mDocument.getViews()[index], viewResult);
        result.mDocument.releaseView(index);
        finishView(std::move(view), viewResult, result, dumped);
        if (onView && !isDump()) {
            onView(index + 1, viewResult);
        }
    }
    if (!isDump() || mOptions.mIsDryRun) {
        return;
    }
    if (result.mIsStopped) {
        // A dump holds all views or is not there: --skip-existing could not tell a part from the whole.
        for (ViewResult& viewResult : result.mViews) {
            if (viewResult.mState != ViewResult::State::Unwanted) {
                viewResult.mState = ViewResult::State::Stopped;
            }
        }
    } else {
        writeDump(dumped, input, result);
    }
}

bool DocumentMigrator::planFiles(const Input& input, DocumentResult& result) const {
    const bool isToFiles = !mOptions.isToStandardOutput();
    bool isTaken = isToFiles && isDump() && exists(getDumpPath(input));
    for (const LegacyDocument::View& view : result.mDocument.getViews()) {
        ViewResult& viewResult = result.mViews.emplace_back();
        viewResult.mName = view.mView != nullptr ? view.mView->GetName() : std::string();
        if (isToFiles && !isDump() && isWanted(result.mViews.size() - 1)) {
            viewResult.mFile = getDrawingPath(input, result.mViews.size(), viewResult.mName);
            isTaken = isTaken || exists(viewResult.mFile);
        }
    }
    return isTaken;
}

bool DocumentMigrator::isKept(const std::string& path) const {
    return mOptions.mExisting == MigrationOptions::Existing::Skip && !mOptions.isToStandardOutput() && exists(path);
}

void DocumentMigrator::findStaleDrawings(const Input& input, DocumentResult& result) const {
    if (isDump() || mOptions.isToStandardOutput() || mOptions.mView != 0) {
        return;
    }
    std::set<std::string> made;
    for (const ViewResult& view : result.mViews) {
        made.insert(view.mFile);
    }
    for (const std::string& path : findDrawings(mOptions.getFolder(input.mDocumentName))) {
        if (made.count(path) == 0) {
            result.mWarnings.push_back("no view of it is drawn to '" + path +
                                       "' any more, which an earlier run made: delete it, or keep it elsewhere");
            result.mOutcome = worst(result.mOutcome, ExitCode::WithProblems);
        }
    }
}

void DocumentMigrator::finishView(CadView view, ViewResult& viewResult, DocumentResult& result,
                                  std::vector<CadView>& dumped) {
    if (view == nullptr) {
        result.mOutcome = worst(result.mOutcome, ExitCode::Refused);
    } else if (isDump()) {
        viewResult.mState = mOptions.mIsDryRun ? ViewResult::State::Planned : ViewResult::State::Written;
    } else {
        writeDrawing(*view, viewResult, result);
    }
    if (!viewResult.mWarnings.empty()) {
        result.mOutcome = worst(result.mOutcome, ExitCode::WithProblems);
    }
    if (isDump()) {
        dumped.push_back(std::move(view));
    }
}

DocumentMigrator::CadView DocumentMigrator::migrateView(const LegacyDocument& document,
                                                        const LegacyDocument::View& view, ViewResult& viewResult) {
    if (view.mView == nullptr) {
        viewResult.mReason = getRefusalOfLoader(document, view);
        return nullptr;
    }
    CadView migrated;
    DocumentLog::Capture capture;
    mMigration.migrateAnnotationView(view.mView, migrated);
    for (DocumentLog::Line& line : capture.takeLines()) {
        if (line.mType != kt::ktLog::Error) {
            continue;
        }
        if (migrated != nullptr) {
            viewResult.mWarnings.push_back(line.mMessage);
        } else if (viewResult.mReason.empty()) {
            // The first line names the cause, later ones where it struck.
            viewResult.mReason = line.mMessage;
            viewResult.mRemedy = MetadataAcceptance::findRemedy(line.mMessage);
        } else {
            viewResult.mReason += ": " + line.mMessage;
        }
        mLog.push_back(std::move(line.mMessage));
    }
    if (migrated == nullptr && viewResult.mReason.empty()) {
        viewResult.mReason = "the migration gave no reason";
    }
    if (migrated != nullptr) {
        if (const std::size_t count = countNestedLeaders(*view.mView); count > 0) {
            viewResult.mWarnings.push_back(std::to_string(count) +
                                           " leaders of nested annotations have no place in the new model");
        }
    }
    return migrated;
}

void DocumentMigrator::writeDrawing(const kt::ktCadAnnotationView& view, ViewResult& viewResult,
                                    DocumentResult& result) {
    mWriter.write(view, mFile);
    for (const kt::ktCadViewSvgWriter::Warning& warning : mWriter.getWarnings()) {
        viewResult.mWarnings.push_back(warning.getSentence());
    }
    if (isKept(viewResult.mFile)) {
        viewResult.mState = ViewResult::State::Skipped;
        if (!hasContent(viewResult.mFile, mFile)) {
            viewResult.mWarnings.push_back(getStaleness(viewResult.mFile));
        }
        return;
    }
    if (mOptions.mIsDryRun) {
        viewResult.mState = ViewResult::State::Planned;
        return;
    }
    if (mOptions.isToStandardOutput()) {
        result.mText += mFile;
    } else {
        viewResult.mReason = ResultFile::write(viewResult.mFile, mFile, mOptions);
    }
    viewResult.mState = viewResult.mReason.empty() ? ViewResult::State::Written : ViewResult::State::Failed;
    if (viewResult.mState == ViewResult::State::Failed) {
        result.mOutcome = worst(result.mOutcome, ExitCode::EnvironmentFailed);
    }
}

void DocumentMigrator::writeDump(const std::vector<CadView>& views, const Input& input, DocumentResult& result) {
    TextOutput text;
    JsonWriter json(text);
    json.beginObject();
    json.key("source").text(input.mSource);
    json.key("views").beginArray();
    for (const CadView& view : views) {
        writeCadViewJson(json, view.get());
    }
    json.endArray();
    json.key("log").beginArray();
    for (const std::string& message : mLog) {
        json.beginObject();
        json.key("type").number(static_cast<int>(kt::ktLog::Error));
        json.key("message").text(message);
        json.endObject();
    }
    json.endArray();
    json.endObject();
    json.endLine();
    if (mOptions.isToStandardOutput()) {
        result.mText = text.takeText();
        return;
    }
    result.mFile = getDumpPath(input);
    if (isKept(result.mFile)) {
        if (!hasContent(result.mFile, text.getText())) {
            result.mWarnings.push_back(getStaleness(result.mFile));
            result.mOutcome = worst(result.mOutcome, ExitCode::WithProblems);
        }
        for (ViewResult& view : result.mViews) {
            view.mState = view.mState == ViewResult::State::Written ? ViewResult::State::Skipped : view.mState;
        }
        return;
    }
    result.mReason = ResultFile::write(result.mFile, text.getText(), mOptions);
    if (!result.mReason.empty()) {
        result.mOutcome = worst(result.mOutcome, ExitCode::EnvironmentFailed);
        for (ViewResult& view : result.mViews) {
            if (view.mState == ViewResult::State::Written) {
                view.mState = ViewResult::State::Failed;
            }
        }
    }
}

std::string DocumentMigrator::getDrawingPath(const Input& input, std::size_t number,
                                             const std::string& viewName) const {
    std::array<char, 24> digits{};
    std::snprintf(digits.data(), digits.size(), "%03zu", number);
    return mOptions.getPlace(input.mDocumentName) + "/" + digits.data() + "-" + makeSafeFileName(viewName) + ".svg";
}

std::string DocumentMigrator::getDumpPath(const Input& input) const {
    return mOptions.getPlace(input.mDocumentName) + ".json";
}

}  // namespace ktannot
