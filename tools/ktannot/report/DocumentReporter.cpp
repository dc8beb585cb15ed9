#include "tools/ktannot/report/DocumentReporter.h"

#include "tools/ktannot/console/TerminalText.h"
#include "tools/ktannot/report/Cause.h"
#include "tools/ktannot/report/JsonWriter.h"
#include "tools/ktannot/report/LegacyJson.h"

#include <array>
#include <vector>

namespace ktannot {

namespace {

using Group = DocumentReport::Group;
using State = ViewResult::State;

constexpr std::array<const char*, 6> sStateNames{"written", "skipped", "refused", "failed", "stopped", "planned"};

const char* getStateName(State state) { return sStateNames[static_cast<std::size_t>(state)]; }

std::string getObjectPlace(const LegacyDocument::Problem& problem) {
    return problem.mObject == 0 ? std::string() : "object " + std::to_string(problem.mObject) + ": ";
}

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

void writeFinding(JsonWriter& json, const char* severity, std::string_view what) {
    json.beginObject();
    json.key("severity").text(severity);
    json.key("what").text(what);
    json.endObject();
}

void writeProblems(JsonWriter& json, const LegacyDocument& document) {
    json.key("problems").beginArray();
    for (const LegacyDocument::Problem& problem : document.getProblems()) {
        json.beginObject();
        json.key("object").number(problem.mObject);
        json.key("offset").number(problem.mOffset);
        json.key("what").text(problem.mWhat);
        json.endObject();
    }
    json.endArray();
}

void writeViewOfWhole(JsonWriter& json, const ViewResult& view) {
    json.beginObject();
    json.key("name").text(view.mName);
    json.key("state").text(getStateName(view.mState));
    if (view.mState == State::Written && !view.mFile.empty()) {
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

/// @param number  of the view within the document, from 1.
void writeViewOfLine(JsonWriter& json, std::size_t number, const ViewResult& view) {
    json.beginObject();
    json.key("view").number(number);
    json.key("name").text(view.mName);
    json.key("state").text(getStateName(view.mState));
    if (!view.mFile.empty()) {
        json.key("file").text(view.mFile);
    }
    if (!view.mRemedy.empty()) {
        json.key("accept").text(view.mRemedy);
    }
    json.key("findings").beginArray();
    if (!view.mReason.empty()) {
        writeFinding(json, "error", view.mReason);
    }
    for (const std::string& warning : view.mWarnings) {
        writeFinding(json, "warning", warning);
    }
    json.endArray();
    json.endObject();
}

}  // namespace

DocumentReport DocumentReporter::report(const DocumentResult& result) const {
    DocumentReport report;
    report.mOutcome = result.mOutcome;
    report.mIsStopped = result.mIsStopped;
    report.mCounts.add(result);
    report.mText = result.mText;
    if (result.isSkippedFile()) {
        return report;
    }
    tell(result, report);
    if (mForm != ReportForm::None) {
        TextOutput text;
        JsonWriter json(text);
        mForm == ReportForm::Whole ? writeWhole(json, result) : writeLine(json, result);
        report.mJson = text.takeText();
    }
    return report;
}

void DocumentReporter::tell(const DocumentResult& result, DocumentReport& report) const {
    const LegacyDocument& document = result.mDocument;
    const std::string source = makeTerminalText(document.getSource()) + ": ";
    const auto add = [&](const std::string& what, const std::string& place = {}) {
        report.getGroup(Group::Kind::Message, findCause(what)).add(source + place + makeTerminalText(what));
    };
    if (!result.getReason().empty()) {
        add(result.getReason());
    } else if (!document.getLimit().empty()) {
        add("a limit was reached: " + document.getLimit());
    }
    for (const LegacyDocument::Problem& problem : document.getProblems()) {
        add(problem.mWhat, getObjectPlace(problem));
    }
    for (const std::string& message : document.getMessages()) {
        add(message);
    }
    for (const std::string& warning : result.mWarnings) {
        add(warning);
    }
    for (std::size_t index = 0; index < result.mViews.size(); ++index) {
        tellView(result, index, report);
    }
}

void DocumentReporter::tellView(const DocumentResult& result, std::size_t index, DocumentReport& report) const {
    const ViewResult& view = result.mViews[index];
    const std::string place =
        makeTerminalText(result.mDocument.getSource()) + ": view " +
        (view.mName.empty() ? std::to_string(index + 1) : "'" + makeTerminalText(view.mName) + "'") + ": ";
    for (const std::string& warning : view.mWarnings) {
        report.getGroup(Group::Kind::Message, findCause(warning)).add(place + makeTerminalText(warning));
    }
    switch (view.mState) {
        case State::Written:
        case State::Planned:
            if (mNamesResults && !view.mFile.empty()) {
                report.mFileNames += makeTerminalText(view.mFile) + "\n";
            }
            break;
        case State::Refused: {
            std::string line = place + makeTerminalText(view.mReason);
            if (!view.mRemedy.empty()) {
                line += " (--accept " + std::string(view.mRemedy) + " drops the metadata and migrates the view)";
            }
            Group& group = report.getGroup(Group::Kind::RefusedView, findCause(view.mReason, view.mRemedy));
            group.mRemedy = view.mRemedy.empty() ? std::string() : "--accept " + std::string(view.mRemedy);
            group.add(std::move(line));
            break;
        }
        case State::Failed:
            // Of a dump the document tells why.
            if (!view.mFile.empty()) {
                report.getGroup(Group::Kind::Message, findCause(view.mReason))
                    .add(makeTerminalText(view.mFile) + ": " + makeTerminalText(view.mReason));
            }
            break;
        case State::Skipped:
        case State::Stopped:
        case State::Unwanted:
            break;
    }
}

void DocumentReporter::writeWhole(JsonWriter& json, const DocumentResult& result) const {
    const LegacyDocument& document = result.mDocument;
    json.beginObject();
    json.key("source").text(document.getSource());
    json.key("exit").number(static_cast<int>(result.mOutcome));
    if (!result.getReason().empty()) {
        json.key("reason").text(result.getReason());
    }
    if (!document.getLimit().empty()) {
        json.key("limit").text(document.getLimit());
    }
    writeTexts(json, "messages", document.getMessages());
    writeTexts(json, "warnings", result.mWarnings);
    writeProblems(json, document);
    json.key("views").beginArray();
    for (const ViewResult& view : result.mViews) {
        if (view.mState != State::Unwanted) {
            writeViewOfWhole(json, view);
        }
    }
    json.endArray();
    json.endObject();
}

void DocumentReporter::writeLine(JsonWriter& json, const DocumentResult& result) const {
    const LegacyDocument& document = result.mDocument;
    json.beginObject();
    json.key("source").text(document.getSource());
    if (result.mFacts.mIsKnown) {
        json.key("size").number(result.mFacts.mSize);
        json.key("mtime").number(result.mFacts.mModified);
        json.key("sha256").text(result.mFacts.mSha256);
    }
    if (document.isLoaded()) {
        json.key("kind").text(LegacyJson::getKindWord(document.getKind()));
    }
    if (!result.mFile.empty()) {
        json.key("file").text(result.mFile);
    }
    json.key("exit").number(static_cast<int>(result.mOutcome));
    json.key("seconds").number(result.mSeconds);
    json.key("views").beginArray();
    for (std::size_t index = 0; index < result.mViews.size(); ++index) {
        if (result.mViews[index].mState != State::Unwanted) {
            writeViewOfLine(json, index + 1, result.mViews[index]);
        }
    }
    json.endArray();
    json.key("findings").beginArray();
    if (!result.getReason().empty()) {
        writeFinding(json, "error", result.getReason());
    }
    if (!document.getLimit().empty()) {
        writeFinding(json, "error", "a limit was reached: " + document.getLimit());
    }
    for (const LegacyDocument::Problem& problem : document.getProblems()) {
        json.beginObject();
        json.key("severity").text("warning");
        json.key("what").text(problem.mWhat);
        json.key("object").number(problem.mObject);
        json.key("offset").number(problem.mOffset);
        json.endObject();
    }
    for (const std::vector<std::string>* texts : {&document.getMessages(), &result.mWarnings}) {
        for (const std::string& text : *texts) {
            writeFinding(json, "warning", text);
        }
    }
    json.endArray();
    json.endObject();
    json.endLine();
}

}  // namespace ktannot
