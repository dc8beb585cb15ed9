#include "tools/ktannot/batch/DocumentMigrator.h"

#include "platform/system/log/ktLog.h"
#include "tools/ktannot/EnvironmentError.h"
#include "tools/ktannot/ToolVersion.h"
#include "tools/ktannot/batch/DocumentLoader.h"
#include "tools/ktannot/batch/ResultFile.h"
#include "tools/ktannot/batch/StopSignal.h"
#include "tools/ktannot/console/TextOutput.h"
#include "tools/ktannot/files/SafeName.h"
#include "tools/ktannot/render/RenderModule.h"
#include "tools/ktannot/report/CadJson.h"
#include "tools/ktannot/report/JsonWriter.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>
#include <span>
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

ktLegacy::ktViewDrawing::Options getDrawingOptions(const MigrationOptions& options) {
    ktLegacy::ktViewDrawing::Options drawing;
    drawing.mAccepted = options.mAcceptedLosses;
    drawing.mHeadSize = options.mHeadSize;
    using TextMode = kt::svg::SvgWriter::TextMode;
    drawing.mWriter.mTextMode = options.mHasTextOutlines ? TextMode::Outlines : TextMode::Text;
    drawing.mWriter.mDrawsPictureBackgrounds = options.mDrawsPictureBackgrounds;
    drawing.mWriter.mBackground = options.mBackground;
    return drawing;
}

bool exists(const std::string& path) {
    std::error_code error;
    return std::filesystem::exists(std::filesystem::symlink_status(path, error));
}

/// Whether a file holds exactly that.
bool hasContent(const std::string& path, std::span<const std::string_view> pieces) {
    std::ifstream file(path, std::ios::binary);
    std::string found;
    for (const std::string_view piece : pieces) {
        found.resize(piece.size());
        file.read(found.data(), static_cast<std::streamsize>(found.size()));
        if (static_cast<std::size_t>(file.gcount()) != piece.size() || found != piece) {
            return false;
        }
    }
    return file.peek() == std::ifstream::traits_type::eof();
}

ktLegacy::ktLegacyFinding makeStaleFinding(const std::string& path) {
    ktLegacy::ktLegacyFinding finding(
        ktLegacy::ktFindingCode::OutputStale,
        "'" + path + "' is kept, but the document gives something else now; --force replaces it");
    finding.mRemedy = "--force";
    return finding;
}

/// The files of a folder that are named like drawings, sorted.
std::vector<std::string> findDrawings(const std::string& folder, std::string_view suffix) {
    std::vector<std::string> found;
    std::error_code error;
    std::filesystem::directory_iterator entry(folder, error);
    while (!error && entry != std::filesystem::directory_iterator()) {
        const std::string name = entry->path().filename().string();
        const std::size_t digits = std::min(name.find_first_not_of("0123456789"), name.size());
        if (digits >= 3 && name[digits] == '-' && name.ends_with(suffix)) {
            found.push_back(folder + "/" + name);
        }
        entry.increment(error);
    }
    std::sort(found.begin(), found.end());
    return found;
}

/// Why the loader made no view: the last of its messages about it.
std::string getRefusalOfLoader(const ktLegacy::ktLegacyDocument& document, std::size_t view) {
    const auto& findings = document.getFindings();
    const auto found = std::find_if(findings.rbegin(), findings.rend(),
                                    [view](const ktLegacy::ktLegacyFinding& finding) { return finding.mView == view; });
    return found != findings.rend() ? found->mWhat : "the document holds no readable view here";
}

}  // namespace

DocumentMigrator::DocumentMigrator(const MigrationOptions& options)
    : mOptions(options), mDrawing(getDrawingOptions(options), [this](const std::string& name, std::string& data) {
          return PictureFolder::provide(name, data, mPictures);
      }) {
    if (mOptions.isRendered()) {
        std::string failure;
        mRenderer = RenderModule::createRenderer(failure);
        if (mRenderer == nullptr) {
            throw EnvironmentError(failure);
        }
    }
}

DocumentMigrator::~DocumentMigrator() = default;

DocumentResult DocumentMigrator::migrate(const Input& input, const ViewListener& onView) {
    DocumentResult result(loadDocument(input, mOptions.mMemoryLimit));
    result.mOutcome = result.mDocument.getOutcome();
    if (result.isSkippedFile()) {
        return result;
    }
    if (result.mDocument.mDocument.isLoaded()) {
        PictureFolder pictures(getPictureFolders(mOptions, input));
        mPictures = &pictures;
        mLog.clear();
        migrateViews(input, result, onView);
        mPictures = nullptr;
    } else if (isDump() && mOptions.isToStandardOutput()) {
        TextOutput text;
        JsonWriter json(text);
        json.beginObject();
        json.key("source").text(input.mSource);
        json.key("refused").text(result.getReason());
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
    if (mOptions.isToStandardOutput() && !mOptions.isOneFile() && mOptions.mView == 0 && count > 1) {
        return "it holds " + std::to_string(count) +
               " views, and standard output takes one drawing: choose it with --view, or a folder for all with -o";
    }
    return {};
}

void DocumentMigrator::migrateViews(const Input& input, DocumentResult& result, const ViewListener& onView) {
    result.mReason = findWrongView(result.mDocument.mDocument.getViews().size());
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
    mPageCount = 0;
    if (mOptions.mFormat == MigrationOptions::Format::Pdf) {
        mRenderer->beginPdf({input.mDocumentName, input.mSource, std::string("ktannot ") + getToolVersion()});
    }
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
        migrateView(index, result, dumped);
        if (onView && !mOptions.isOneFile()) {
            onView(index + 1, viewResult);
        }
    }
    if (!mOptions.isOneFile() || mOptions.mIsDryRun) {
        return;
    }
    if (result.mIsStopped) {
        // The file holds all views or is not there: --skip-existing could not tell a part from the whole.
        for (ViewResult& viewResult : result.mViews) {
            if (viewResult.mState != ViewResult::State::Unwanted) {
                viewResult.mState = ViewResult::State::Stopped;
            }
        }
    } else if (isDump()) {
        writeDump(dumped, input, result);
    } else if (mPageCount > 0) {
        writePdf(input, result);
    }
}

bool DocumentMigrator::planFiles(const Input& input, DocumentResult& result) const {
    const bool isToFiles = !mOptions.isToStandardOutput();
    bool isTaken = isToFiles && mOptions.isOneFile() && exists(getDocumentPath(input));
    for (const ktLegacy::ktLegacyDocument::View& view : result.mDocument.mDocument.getViews()) {
        ViewResult& viewResult = result.mViews.emplace_back();
        viewResult.mName = view.mView != nullptr ? view.mView->GetName() : std::string();
        if (isToFiles && !mOptions.isOneFile() && isWanted(result.mViews.size() - 1)) {
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
    if (mOptions.isOneFile() || mOptions.isToStandardOutput() || mOptions.mView != 0) {
        return;
    }
    std::set<std::string> made;
    for (const ViewResult& view : result.mViews) {
        made.insert(view.mFile);
    }
    for (const std::string& path : findDrawings(mOptions.getFolder(input.mDocumentName), mOptions.getSuffix())) {
        if (made.count(path) == 0) {
            result.mFindings.emplace_back(ktLegacy::ktFindingCode::OutputOrphaned,
                                          "no view of it is drawn to '" + path +
                                              "' any more, which an earlier run made: delete it, or keep it elsewhere");
            result.mOutcome = worst(result.mOutcome, ExitCode::WithProblems);
        }
    }
}

void DocumentMigrator::migrateView(std::size_t index, DocumentResult& result, std::vector<CadView>& dumped) {
    ktLegacy::ktLegacyDocument& document = result.mDocument.mDocument;
    ViewResult& viewResult = result.mViews[index];
    const kt::ktPointer<ktLegacy::ktAnnotationView> view = document.getViews()[index].mView;
    CadView migrated;
    bool isMade = false;
    if (view == nullptr) {
        viewResult.mReason = getRefusalOfLoader(document, index);
    } else if (isDump()) {
        migrated = mDrawing.migrate(*view);
        isMade = migrated != nullptr;
        takeFindings(index, viewResult);
    } else {
        isMade = mDrawing.drawAndRelease(*view);
        takeFindings(index, viewResult);
    }
    document.releaseView(index);
    for (std::string& failure : mPictures->takeFailures()) {
        ktLegacy::ktLegacyFinding& finding =
            result.mFindings.emplace_back(ktLegacy::ktFindingCode::PictureUnreadable, std::move(failure));
        finding.mView = index;
        finding.mViewName = viewResult.mName;
        result.mOutcome = worst(result.mOutcome, ExitCode::EnvironmentFailed);
    }
    if (!isMade) {
        const auto isMachinesFault = [](const ktLegacy::ktLegacyFinding& finding) {
            return finding.mCode == ktLegacy::ktFindingCode::FontsUnavailable;
        };
        const bool mayHelpAgain =
            std::any_of(viewResult.mFindings.begin(), viewResult.mFindings.end(), isMachinesFault);
        result.mOutcome = worst(result.mOutcome, mayHelpAgain ? ExitCode::EnvironmentFailed : ExitCode::Refused);
    } else if (mOptions.isOneFile()) {
        viewResult.mState = mOptions.mIsDryRun ? ViewResult::State::Planned : ViewResult::State::Written;
        addPage(viewResult, result);
    } else {
        writeDrawing(viewResult, result);
    }
    const auto matters = [](const ktLegacy::ktLegacyFinding& finding) {
        return finding.getSeverity() != ktLegacy::ktFindingSeverity::Note;
    };
    if (std::any_of(viewResult.mFindings.begin(), viewResult.mFindings.end(), matters)) {
        result.mOutcome = worst(result.mOutcome, ExitCode::WithProblems);
    }
    if (isDump()) {
        dumped.push_back(std::move(migrated));
    }
}

void DocumentMigrator::takeFindings(std::size_t index, ViewResult& viewResult) {
    viewResult.mFindings = mDrawing.getFindings();
    for (ktLegacy::ktLegacyFinding& finding : viewResult.mFindings) {
        finding.mView = index;
    }
    viewResult.mReason = mDrawing.getReason();
    mLog.insert(mLog.end(), mDrawing.getLogLines().begin(), mDrawing.getLogLines().end());
}

void DocumentMigrator::addPage(ViewResult& viewResult, DocumentResult& result) {
    if (isDump() || mOptions.mIsDryRun) {
        return;
    }
    viewResult.mReason = mRenderer->addPdfPage(mDrawing.getSvg());
    if (viewResult.mReason.empty()) {
        ++mPageCount;
    } else {
        viewResult.mState = ViewResult::State::Failed;
        result.mOutcome = worst(result.mOutcome, ExitCode::EnvironmentFailed);
    }
}

void DocumentMigrator::writeDrawing(ViewResult& viewResult, DocumentResult& result) {
    std::vector<std::string_view> pieces = mDrawing.getPieces();
    std::string png;
    if (mOptions.mFormat == MigrationOptions::Format::Png) {
        viewResult.mReason = mRenderer->drawPng(mDrawing.getSvg(), mOptions.mDotsPerInch, png);
        if (!viewResult.mReason.empty()) {
            viewResult.mState = ViewResult::State::Failed;
            result.mOutcome = worst(result.mOutcome, ExitCode::EnvironmentFailed);
            return;
        }
        pieces = {png};
    }
    if (isKept(viewResult.mFile)) {
        viewResult.mState = ViewResult::State::Skipped;
        if (!hasContent(viewResult.mFile, pieces)) {
            ktLegacy::ktLegacyFinding& stale = viewResult.mFindings.emplace_back(makeStaleFinding(viewResult.mFile));
            stale.mView = static_cast<std::size_t>(&viewResult - result.mViews.data());
            stale.mViewName = viewResult.mName;
        }
        return;
    }
    if (mOptions.mIsDryRun) {
        viewResult.mState = ViewResult::State::Planned;
        return;
    }
    if (mOptions.isToStandardOutput()) {
        for (const std::string_view piece : pieces) {
            result.mText += piece;
        }
    } else {
        viewResult.mReason = ResultFile::write(viewResult.mFile, pieces, mOptions);
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
    writeDocument(text.takeText(), input, result);
}

void DocumentMigrator::writePdf(const Input& input, DocumentResult& result) {
    std::string pdf;
    result.mReason = mRenderer->finishPdf(pdf);
    if (!result.mReason.empty()) {
        result.mOutcome = worst(result.mOutcome, ExitCode::EnvironmentFailed);
        return;
    }
    writeDocument(std::move(pdf), input, result);
}

void DocumentMigrator::writeDocument(std::string text, const Input& input, DocumentResult& result) const {
    if (mOptions.isToStandardOutput()) {
        result.mText = std::move(text);
        return;
    }
    const std::string_view content = text;
    result.mFile = getDocumentPath(input);
    if (isKept(result.mFile)) {
        if (!hasContent(result.mFile, {&content, 1})) {
            result.mFindings.push_back(makeStaleFinding(result.mFile));
            result.mOutcome = worst(result.mOutcome, ExitCode::WithProblems);
        }
        for (ViewResult& view : result.mViews) {
            view.mState = view.mState == ViewResult::State::Written ? ViewResult::State::Skipped : view.mState;
        }
        return;
    }
    result.mReason = ResultFile::write(result.mFile, {&content, 1}, mOptions);
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
    return mOptions.getPlace(input.mDocumentName) + "/" + digits.data() + "-" + makeSafeFileName(viewName) +
           mOptions.getSuffix();
}

std::string DocumentMigrator::getDocumentPath(const Input& input) const {
    return addSuffix(mOptions.getPlace(input.mDocumentName), mOptions.getSuffix());
}

}  // namespace ktannot
