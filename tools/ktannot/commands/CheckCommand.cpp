#include "tools/ktannot/commands/CheckCommand.h"

#include "tools/ktannot/batch/DocumentLoader.h"
#include "tools/ktannot/batch/InputSet.h"
#include "tools/ktannot/console/TerminalText.h"
#include "tools/ktannot/report/DocumentNotices.h"
#include "tools/ktannot/report/FindingText.h"
#include "tools/ktannot/report/JsonWriter.h"
#include "tools/ktannot/report/LegacyJson.h"

#include <CLI/CLI.hpp>

namespace ktannot {

std::string CheckCommand::getDetails() const {
    return "Examples:\n"
           "  ktannot check archive/              every problem of every document of a folder, then a summary\n"
           "  ktannot check part.kts notes.json   two documents\n"
           "  ktannot check --json archive/       one line of JSON for each document\n\n"
           "Documents without problems are counted and not listed.\n\n" +
           getExitCodeText();
}

void CheckCommand::declareOptions(CLI::App& app) {
    declareInputs(app, mArguments);
    app.add_flag("--json", mIsJson, "Print one line of JSON for each document");
    declareMemoryLimit(app, mMemoryLimit);
}

ExitCode CheckCommand::run(Channels& channels) {
    Console& console = channels.mConsole;
    const InputSet inputs(mArguments);
    DocumentCensus census;
    ExitCode outcome = ExitCode::AllWell;
    for (std::size_t index = 0; index < inputs.size(); ++index) {
        const SourceDocument document = loadDocument(inputs[index], mMemoryLimit);
        census.add(document);
        outcome = worst(outcome, document.getOutcome());
        if (document.mIsSkipped) {
            continue;
        }
        if (mIsJson) {
            writeJson(console.out(), document);
            tellRefusal(console, document);
        } else {
            printFindings(console.out(), document);
        }
    }
    if (!mIsJson) {
        printSummary(console.out(), census, inputs.getPassedOver().describe());
    }
    return outcome;
}

void CheckCommand::printFindings(TextOutput& output, const SourceDocument& document) {
    if (!document.mDocument.isLoaded()) {
        output.write(describeRefusal(document) + "\n");
        return;
    }
    if (document.getOutcome() == ExitCode::AllWell) {
        return;
    }
    output.write(makeTerminalText(document.mSource) + ":\n");
    for (const std::string& line : describeFindings(document.mDocument.getFindings())) {
        output.write("  " + line + "\n");
    }
    const std::vector<ktLegacy::ktLegacyDocument::View>& views = document.mDocument.getViews();
    for (std::size_t index = 0; index < views.size(); ++index) {
        if (views[index].mIsMissing) {
            output.write("  view " + std::to_string(index + 1) + ": refused\n");
        }
    }
    if (!document.mDocument.getLimit().empty()) {
        output.write("  a limit was reached: " + document.mDocument.getLimit() + "\n");
    }
}

void CheckCommand::printSummary(TextOutput& output, const DocumentCensus& census, const std::string& passedOver) {
    std::string text = countOf(census.mDocuments, "document") + ": " + census.describeContent();
    text += "; " + countOf(census.mFindings, "finding");
    text +=
        "; refused: " + countOf(census.mRefusedDocuments, "document") + ", " + countOf(census.mRefusedViews, "view");
    if (census.mUnreadableDocuments != 0) {
        text += "; not readable: " + std::to_string(census.mUnreadableDocuments);
    }
    if (census.mSkippedFiles != 0) {
        text += "; skipped: " + countOf(census.mSkippedFiles, "file") + " without a view map";
    }
    if (!passedOver.empty()) {
        text += "; passed over: " + passedOver;
    }
    output.write(text + "\n");
}

void CheckCommand::writeJson(TextOutput& output, const SourceDocument& document) {
    JsonWriter json(output);
    LegacyJson content(json);
    json.beginObject();
    if (!document.mDocument.isLoaded()) {
        content.writeRefusal(document);
    } else {
        DocumentCensus census;
        census.add(document);
        json.key("source").text(document.mSource);
        json.key("kind").text(LegacyJson::getKindWord(document.mDocument.getKind()));
        json.key("streamError").boolean(document.mDocument.hasStreamError());
        content.writeFindings(document.mDocument);
        json.key("viewCount").number(census.mViews);
        json.key("refusedViewCount").number(census.mRefusedViews);
        json.key("annotationCount").number(census.mAnnotations);
        json.key("childCount").number(census.mChildren);
    }
    json.endObject();
    json.endLine();
}

}  // namespace ktannot
