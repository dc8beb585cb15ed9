#include "tools/ktannot/report/MigrationReportText.h"

#include "tools/ktannot/console/TerminalText.h"
#include "tools/ktannot/report/CountOf.h"

namespace ktannot {

namespace {

using Group = DocumentReport::Group;

/// "880 views: metadata under known keys; --accept known-metadata; first: ..."
std::string describe(const Group& group) {
    std::string text =
        countOf(group.mCount, group.mKind == Group::Kind::RefusedView ? "view" : "message") + ": " + group.mCause;
    if (!group.mRemedy.empty()) {
        text += "; " + group.mRemedy;
    }
    return text + "; first: " + group.mLines.front();
}

}  // namespace

void MigrationReportText::add(const DocumentReport& report) {
    if (!mIsQuiet && !mHasResultsOnOutput) {
        mConsole.out().write(report.mFileNames);
    }
    for (const Group& added : report.mGroups) {
        Group& group = mTotal.getGroup(added.mKind, added.mCause);
        group.mRemedy = added.mRemedy;
        for (const std::string& line : added.mLines) {
            if (group.mLines.size() < Group::sLines && group.mKind == Group::Kind::Message) {
                mConsole.tell(line);
            }
            group.add(line);
        }
        group.mCount += added.mCount - added.mLines.size();
    }
}

void MigrationReportText::finishGroups() {
    std::size_t refused = 0;
    for (const Group& group : mTotal.mGroups) {
        refused += group.mKind == Group::Kind::RefusedView ? group.mCount : 0;
        if (group.mKind == Group::Kind::Message && group.mCount > group.mLines.size()) {
            mConsole.tell(describe(group));
        }
    }
    if (refused == 0) {
        return;
    }
    mConsole.tell(countOf(refused, "view") + " not migrated:");
    for (const Group& group : mTotal.mGroups) {
        if (group.mKind != Group::Kind::RefusedView) {
            continue;
        }
        if (group.mCount > group.mLines.size()) {
            mConsole.tell("  " + describe(group));
            continue;
        }
        for (const std::string& line : group.mLines) {
            mConsole.tell("  " + line);
        }
    }
}

void MigrationReportText::finish(const MigrationCounts& counts, const std::string& output, bool isDryRun,
                                 const std::string& passedOver) {
    finishGroups();
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
