#include "tools/ktannot/commands/CheckCommand.h"

#include "tools/ktannot/batch/InputSet.h"
#include "tools/ktannot/console/TerminalText.h"
#include "tools/ktannot/report/DocumentNotices.h"
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
        DocumentLog::Capture log;
        const LegacyDocument document = LegacyDocument::load(inputs[index], mMemoryLimit);
        census.add(document);
        outcome = worst(outcome, document.getOutcome());
        if (document.getState() == LegacyDocument::State::Skipped) {
            continue;
        }
        if (mIsJson) {
            writeJson(console.out(), document);
            tellRefusal(console, document);
        } else {
            printFindings(console.out(), document);
        }
        tellLog(console, document, log.getLines());
    }
    if (!mIsJson) {
        printSummary(console.out(), census, inputs.getPassedOver().describe());
    }
    return outcome;
}

void CheckCommand::printFindings(TextOutput& output, const LegacyDocument& document) {
    if (!document.isLoaded()) {
        output.write(describeRefusal(document) + "\n");
        return;
    }
    if (document.getOutcome() == ExitCode::AllWell) {
        return;
    }
    output.write(makeTerminalText(document.getSource()) + ":\n");
    const std::vector<LegacyDocument::View>& views = document.getViews();
    for (std::size_t index = 0; index < views.size(); ++index) {
        const std::string view = "  view " + std::to_string(index + 1) + ": ";
        for (std::size_t message = views[index].mMessagesBegin; message < views[index].mMessagesEnd; ++message) {
            output.write(view + makeTerminalText(document.getMessages()[message]) + "\n");
        }
        if (views[index].mIsMissing) {
            output.write(view + "refused\n");
        }
    }
    for (const LegacyDocument::Problem& problem : document.getProblems()) {
        if (document.getKind() == LegacyDocument::Kind::Stream) {
            output.write("  object " + std::to_string(problem.mObject) + ", byte " + std::to_string(problem.mOffset) +
                         ": " + makeTerminalText(problem.mWhat) + "\n");
        } else {
            output.write("  " + makeTerminalText(problem.mWhat) + "\n");
        }
    }
    if (!document.getLimit().empty()) {
        output.write("  a limit was reached: " + document.getLimit() + "\n");
    }
}

void CheckCommand::printSummary(TextOutput& output, const DocumentCensus& census, const std::string& passedOver) {
    std::string text = countOf(census.mDocuments, "document") + ": " + census.describeContent();
    text += "; " + countOf(census.mProblems, "problem") + ", " + countOf(census.mMessages, "message");
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

void CheckCommand::writeJson(TextOutput& output, const LegacyDocument& document) {
    JsonWriter json(output);
    LegacyJson content(json);
    json.beginObject();
    if (!document.isLoaded()) {
        content.writeRefusal(document);
    } else {
        DocumentCensus census;
        census.add(document);
        json.key("source").text(document.getSource());
        json.key("kind").text(LegacyJson::getKindWord(document.getKind()));
        json.key("streamError").boolean(document.hasStreamError());
        content.writeFindings(document);
        json.key("views").number(census.mViews);
        json.key("refusedViews").number(census.mRefusedViews);
        json.key("annotations").number(census.mAnnotations);
        json.key("children").number(census.mChildren);
        if (!document.getLimit().empty()) {
            json.key("limit").text(document.getLimit());
        }
    }
    json.endObject();
    json.endLine();
}

}  // namespace ktannot
