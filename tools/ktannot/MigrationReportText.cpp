#include "tools/ktannot/MigrationReportText.h"

#include "tools/ktannot/DocumentCensus.h"
#include "tools/ktannot/TerminalText.h"

namespace ktannot {

namespace {

std::string getObjectPlace(const LegacyDocument::Problem& problem) {
    return problem.mObject == 0 ? std::string() : "object " + std::to_string(problem.mObject) + ": ";
}

}  // namespace

bool MigrationReportText::hasFindings(const DocumentResult& result) {
    return !result.isSkippedFile() && result.mOutcome != ExitCode::AllWell;
}

void MigrationReportText::add(const DocumentResult& result) {
    if (result.isSkippedFile()) {
        return;
    }
    const LegacyDocument& document = result.mDocument;
    const std::string source = makeTerminalText(document.getSource());
    if (!result.getReason().empty()) {
        mConsole.tell(source + ": " + makeTerminalText(result.getReason()));
    }
    for (const LegacyDocument::Problem& problem : document.getProblems()) {
        mConsole.tell(source + ": " + getObjectPlace(problem) + makeTerminalText(problem.mWhat));
    }
    for (const std::string& message : document.getMessages()) {
        mConsole.tell(source + ": " + makeTerminalText(message));
    }
    for (const ViewResult& view : result.mViews) {
        addView(result, view);
    }
}

void MigrationReportText::addView(const DocumentResult& result, const ViewResult& view) {
    const std::string place =
        makeTerminalText(result.mDocument.getSource()) + ": view '" + makeTerminalText(view.mName) + "': ";
    for (const std::string& warning : view.mWarnings) {
        mConsole.tell(place + makeTerminalText(warning));
    }
    switch (view.mState) {
        case ViewResult::State::Written:
            if (mIsVerbose && !mHasResultsOnOutput && !view.mFile.empty()) {
                mConsole.out().write(makeTerminalText(view.mFile) + "\n");
            }
            break;
        case ViewResult::State::Skipped:
            break;
        case ViewResult::State::Refused: {
            std::string line = place + makeTerminalText(view.mReason);
            if (!view.mRemedy.empty()) {
                line += " (--accept " + std::string(view.mRemedy) + " drops the metadata and migrates the view)";
            }
            mRefusedViews.push_back(std::move(line));
            break;
        }
        case ViewResult::State::Failed:
            mConsole.tell(makeTerminalText(view.mFile) + ": " + makeTerminalText(view.mReason));
            break;
    }
}

void MigrationReportText::finish(const MigrationCounts& counts, const std::string& output) {
    if (!mRefusedViews.empty()) {
        mConsole.tell(countOf(mRefusedViews.size(), "view") + " not migrated:");
        for (const std::string& line : mRefusedViews) {
            mConsole.tell("  " + line);
        }
    }
    if (mIsQuiet || mHasResultsOnOutput) {
        return;
    }
    std::string summary = countOf(counts.mWritten, "view") + " of " + countOf(counts.mDocuments, "document") +
                          " migrated to " + makeTerminalText(output);
    const auto append = [&summary](std::size_t number, const char* what) {
        if (number > 0) {
            summary += "; " + std::to_string(number) + " " + what;
        }
    };
    append(counts.mSkippedViews, "there already");
    append(counts.mRefusedViews, "refused");
    append(counts.mFailedViews, "not written");
    append(counts.mFailedDocuments, "documents failed");
    append(counts.mSkippedFiles, "other files skipped");
    append(counts.mProblems, "problems told");
    mConsole.out().write(summary + "\n");
}

}  // namespace ktannot
