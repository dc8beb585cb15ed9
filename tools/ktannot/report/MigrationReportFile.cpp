#include "tools/ktannot/report/MigrationReportFile.h"

#include "library/Version.h"

#include <array>
#include <vector>

namespace ktannot {

namespace {

constexpr std::array<const char*, 6> sStateNames{"written", "skipped", "refused", "failed", "stopped", "planned"};

void writeTexts(JsonWriter& json, const char* key, const std::vector<std::string>& texts) {
    if (texts.empty()) {
        return;
    }
    json.key(key).beginArray();
    for (const std::string& text : texts) {
        json.text(text);
    }
    json.endArray();
}

void writeView(JsonWriter& json, const ViewResult& view) {
    json.beginObject();
    json.key("name").text(view.mName);
    json.key("state").text(sStateNames[static_cast<std::size_t>(view.mState)]);
    if (view.mState == ViewResult::State::Written && !view.mFile.empty()) {
        json.key("file").text(view.mFile);
    }
    if (!view.mReason.empty()) {
        json.key("reason").text(view.mReason);
    }
    if (!view.mRemedy.empty()) {
        json.key("accept").text(view.mRemedy);
    }
    writeTexts(json, "warnings", view.mWarnings);
    json.endObject();
}

}  // namespace

MigrationReportFile::MigrationReportFile(const std::string& path)
    : mFile(path, SideOutput::Way::Whole), mText(mFile.getDescriptor()), mJson(mText) {
    mJson.beginObject();
    mJson.key("tool").text("ktannot");
    mJson.key("version").text(ktAnnotationLegacy::Version::GetDescStringMajorMinorRelease(true));
    mJson.key("documents").beginArray();
}

void MigrationReportFile::add(const DocumentResult& result) {
    if (result.isSkippedFile()) {
        return;
    }
    const LegacyDocument& document = result.mDocument;
    mJson.beginObject();
    mJson.key("source").text(document.getSource());
    mJson.key("exit").number(static_cast<int>(result.mOutcome));
    if (!result.getReason().empty()) {
        mJson.key("reason").text(result.getReason());
    }
    if (!document.getLimit().empty()) {
        mJson.key("limit").text(document.getLimit());
    }
    writeTexts(mJson, "messages", document.getMessages());
    mJson.key("problems").beginArray();
    for (const LegacyDocument::Problem& problem : document.getProblems()) {
        mJson.beginObject();
        mJson.key("object").number(problem.mObject);
        mJson.key("offset").number(problem.mOffset);
        mJson.key("what").text(problem.mWhat);
        mJson.endObject();
    }
    mJson.endArray();
    mJson.key("views").beginArray();
    for (const ViewResult& view : result.mViews) {
        if (view.mState != ViewResult::State::Unwanted) {
            writeView(mJson, view);
        }
    }
    mJson.endArray();
    mJson.endObject();
}

std::string MigrationReportFile::finish(const MigrationCounts& counts, ExitCode outcome) {
    mJson.endArray();
    mJson.key("summary").beginObject();
    mJson.key("documents").number(counts.mDocuments);
    mJson.key("failedDocuments").number(counts.mFailedDocuments);
    mJson.key("skippedFiles").number(counts.mSkippedFiles);
    mJson.key("written").number(counts.mWritten);
    mJson.key("skipped").number(counts.mSkippedViews);
    mJson.key("refused").number(counts.mRefusedViews);
    mJson.key("failed").number(counts.mFailedViews);
    mJson.key("problems").number(counts.mProblems);
    mJson.endObject();
    mJson.key("exit").number(static_cast<int>(outcome));
    mJson.endObject();
    mJson.endLine();
    if (!mText.flush()) {
        return "cannot write";
    }
    return mFile.publish();
}

}  // namespace ktannot
