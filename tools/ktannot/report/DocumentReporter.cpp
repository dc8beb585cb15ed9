#include "tools/ktannot/report/DocumentReporter.h"

#include "tools/ktannot/console/TerminalText.h"
#include "tools/ktannot/report/Cause.h"
#include "tools/ktannot/report/FindingJson.h"
#include "tools/ktannot/report/FindingText.h"
#include "tools/ktannot/report/JsonWriter.h"
#include "tools/ktannot/report/LegacyJson.h"

#include <array>
#include <utility>
#include <vector>

namespace ktannot {

namespace {

using Group = DocumentReport::Group;
using State = ViewResult::State;

constexpr std::array<const char*, 6> sStateNames{"written", "skipped", "refused", "failed", "stopped", "planned"};

const char* getStateName(State state) { return sStateNames[static_cast<std::size_t>(state)]; }

using ktLegacy::ktLegacyDocument;
using ktLegacy::ktLegacyFinding;

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

/// The sentences of what a drawing lacks, those about single annotations with their names.
std::vector<std::string> getWarnings(const std::vector<ktLegacyFinding>& findings) {
    std::vector<std::string> warnings;
    for (const ktLegacyFinding& finding : findings) {
        warnings.push_back((finding.mAnnotation ? "annotation '" + finding.mAnnotationName + "': " : "") +
                           finding.mWhat);
    }
    return warnings;
}

/// What a word of --accept does.
const char* getEffect(std::string_view word) {
    if (word == "failed-annotations") {
        return " draws the view without the annotation";
    }
    return word == "missing-pictures" ? " draws a crossed box in its place"
                                      : " drops the metadata and migrates the view";
}

/// The document's findings, of its reading and of its results.
std::vector<ktLegacyFinding> getFindings(const DocumentResult& result) {
    std::vector<ktLegacyFinding> findings = result.mDocument.mDocument.getFindings();
    findings.insert(findings.end(), result.mFindings.begin(), result.mFindings.end());
    if (!result.mReason.empty()) {
        findings.emplace_back(ktLegacy::ktFindingCode::OutputNotWritten, result.mReason);
    }
    return findings;
}

/// The view's findings; what kept it from being made or written comes as one, too.
std::vector<ktLegacyFinding> getFindings(const ViewResult& view, std::size_t number) {
    std::vector<ktLegacyFinding> findings = view.mFindings;
    if (view.mState == State::Failed && !view.mReason.empty()) {
        ktLegacyFinding& failure =
            findings.emplace_back(ktLegacyFinding(ktLegacy::ktFindingCode::OutputNotWritten, view.mReason));
        failure.mView = number - 1;
        failure.mViewName = view.mName;
    }
    return findings;
}

void writeProblems(JsonWriter& json, const ktLegacyDocument& document) {
    json.key("problems").beginArray();
    for (const ktLegacyDocument::Problem& problem : document.getProblems()) {
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
    if (!view.getAcceptWord().empty()) {
        json.key("accept").text(view.getAcceptWord());
    }
    if (view.mState != State::Refused) {
        writeTexts(json, "warnings", getWarnings(view.mFindings));
    }
    if (!view.mFindings.empty()) {
        json.key("findings");
        writeFindingsJson(json, view.mFindings);
    }
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
    if (!view.getAcceptWord().empty()) {
        json.key("accept").text(view.getAcceptWord());
    }
    json.key("findings");
    writeFindingsJson(json, getFindings(view, number));
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
    const ktLegacyDocument& document = result.mDocument.mDocument;
    const std::string source = makeTerminalText(result.mDocument.mSource) + ": ";
    if (const std::string reason = result.getReason(); !reason.empty()) {
        const std::string cause = document.isLoaded() ? findCause(reason) : findCause(document.getFindings().back());
        report.getGroup(Group::Kind::Message, cause).add(source + makeTerminalText(reason));
    } else if (!document.getLimit().empty()) {
        report.getGroup(Group::Kind::Message, "a limit was reached")
            .add(source + "a limit was reached: " + makeTerminalText(document.getLimit()));
    }
    if (document.isLoaded()) {
        for (const ktLegacyFinding& finding : document.getFindings()) {
            tellFinding(source, finding, report);
        }
    }
    for (const ktLegacyFinding& finding : result.mFindings) {
        tellFinding(source, finding, report);
    }
    for (std::size_t index = 0; index < result.mViews.size(); ++index) {
        tellView(result, index, report);
    }
}

void DocumentReporter::tellFinding(const std::string& source, const ktLegacyFinding& finding, DocumentReport& report) {
    if (finding.getSeverity() != ktLegacy::ktFindingSeverity::Note) {
        report.getGroup(Group::Kind::Message, findCause(finding)).add(source + describeFinding(finding));
    }
}

void DocumentReporter::tellView(const DocumentResult& result, std::size_t index, DocumentReport& report) const {
    const ViewResult& view = result.mViews[index];
    const std::string source = makeTerminalText(result.mDocument.mSource) + ": ";
    const std::string place =
        source + "view " + (view.mName.empty() ? std::to_string(index + 1) : "'" + makeTerminalText(view.mName) + "'") +
        ": ";
    if (view.mState != State::Refused) {
        for (const ktLegacyFinding& finding : view.mFindings) {
            tellFinding(source, finding, report);
        }
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
            const std::string_view word = view.getAcceptWord();
            if (!word.empty()) {
                line += " (--accept " + std::string(word) + getEffect(word) + ")";
            }
            Group& group =
                report.getGroup(Group::Kind::RefusedView,
                                view.mFindings.empty() ? findCause(view.mReason) : findCause(view.mFindings.back()));
            group.mRemedy = word.empty() ? std::string() : "--accept " + std::string(word);
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
    const ktLegacyDocument& document = result.mDocument.mDocument;
    json.beginObject();
    json.key("source").text(result.mDocument.mSource);
    json.key("exit").number(static_cast<int>(result.mOutcome));
    if (!result.getReason().empty()) {
        json.key("reason").text(result.getReason());
    }
    if (!document.getLimit().empty()) {
        json.key("limit").text(document.getLimit());
    }
    writeTexts(json, "messages", document.getMessages());
    writeTexts(json, "warnings", getWarnings(result.mFindings));
    writeProblems(json, document);
    json.key("findings");
    writeFindingsJson(json, getFindings(result));
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
    const ktLegacyDocument& document = result.mDocument.mDocument;
    json.beginObject();
    json.key("source").text(result.mDocument.mSource);
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
    json.key("findings");
    writeFindingsJson(json, getFindings(result));
    json.endObject();
    json.endLine();
}

}  // namespace ktannot
