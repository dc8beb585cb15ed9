#include "tools/ktannot/report/MigrationReportText.h"

#include "tools/ktannot/console/TerminalText.h"
#include "tools/ktannot/report/DocumentCensus.h"

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
    } else if (!document.getLimit().empty()) {
        mConsole.tell(source + ": a limit was reached: " + makeTerminalText(document.getLimit()));
    }
    for (const LegacyDocument::Problem& problem : document.getProblems()) {
        mConsole.tell(source + ": " + getObjectPlace(problem) + makeTerminalText(problem.mWhat));
    }
    for (const std::string& message : document.getMessages()) {
        mConsole.tell(source + ": " + makeTerminalText(message));
    }
    for (std::size_t index = 0; index < result.mViews.size(); ++index) {
        addView(result, index);
    }
}

void MigrationReportText::addView(const DocumentResult& result, std::size_t index) {
    const ViewResult& view = result.mViews[index];
    const std::string place =
        makeTerminalText(result.mDocument.getSource()) + ": view " +
        (view.mName.empty() ? std::to_string(index + 1) : "'" + makeTerminalText(view.mName) + "'") + ": ";
    for (const std::string& warning : view.mWarnings) {
        mConsole.tell(place + makeTerminalText(warning));
    }
    switch (view.mState) {
        case ViewResult::State::Written:
        case ViewResult::State::Planned:
            if (mIsVerbose && !mHasResultsOnOutput && !view.mFile.empty()) {
                mConsole.out().write(makeTerminalText(view.mFile) + "\n");
            }
            break;
        case ViewResult::State::Skipped:
        case ViewResult::State::Stopped:
        case ViewResult::State::Unwanted:
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
            // Of a dump the document tells why.
            if (view.mFile.empty()) {
                break;
            }
            mConsole.tell(makeTerminalText(view.mFile) + ": " + makeTerminalText(view.mReason));
            break;
    }
}

void MigrationReportText::finish(const MigrationCounts& counts, const std::string& output, bool isDryRun,
                                 const std::string& passedOver) {
    if (!mRefusedViews.empty()) {
        mConsole.tell(countOf(mRefusedViews.size(), "view") + " not migrated:");
        for (const std::string& line : mRefusedViews) {
            mConsole.tell("  " + line);
        }
    }
    if (mIsQuiet || mHasResultsOnOutput) {
        return;
    }
    std::string summary = countOf(isDryRun ? counts.mPlanned : counts.mWritten, "view") + " of " +
                          countOf(counts.mDocuments, "document") + (isDryRun ? " would be" : "") + " migrated to " +
                          makeTerminalText(output);
    const auto append = [&summary](std::size_t number, const std::string& what) {
        if (number > 0) {
            summary += "; " + what;
        }
    };
    append(counts.mSkippedViews, std::to_string(counts.mSkippedViews) + " there already");
    append(counts.mRefusedViews, std::to_string(counts.mRefusedViews) + " refused");
    append(counts.mFailedViews, std::to_string(counts.mFailedViews) + " not written");
    append(counts.mFailedDocuments, countOf(counts.mFailedDocuments, "document") + " failed");
    append(counts.mSkippedFiles, countOf(counts.mSkippedFiles, "other file") + " skipped");
    append(counts.mProblems, countOf(counts.mProblems, "problem") + " told");
    append(passedOver.empty() ? 0 : 1, "passed over: " + passedOver);
    mConsole.out().write(summary + "\n");
}

}  // namespace ktannot
