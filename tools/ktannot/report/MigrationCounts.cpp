#include "tools/ktannot/report/MigrationCounts.h"

namespace ktannot {

void MigrationCounts::add(const DocumentResult& result) {
    if (result.isSkippedFile()) {
        ++mSkippedFiles;
        return;
    }
    ++mDocuments;
    mFailedDocuments += result.getReason().empty() ? 0U : 1U;
    mProblems += result.mDocument.mDocument.isLoaded() ? result.mDocument.mDocument.getFindings().size() : 0;
    mProblems += result.mFindings.size();
    for (const ViewResult& view : result.mViews) {
        mWritten += view.mState == ViewResult::State::Written ? 1U : 0U;
        mPlanned += view.mState == ViewResult::State::Planned ? 1U : 0U;
        mSkippedViews += view.mState == ViewResult::State::Skipped ? 1U : 0U;
        mRefusedViews += view.mState == ViewResult::State::Refused ? 1U : 0U;
        mFailedViews += view.mState == ViewResult::State::Failed ? 1U : 0U;
        mProblems += view.mState != ViewResult::State::Refused ? view.mFindings.size() : 0;
    }
}

void MigrationCounts::add(const MigrationCounts& other) {
    mDocuments += other.mDocuments;
    mFailedDocuments += other.mFailedDocuments;
    mSkippedFiles += other.mSkippedFiles;
    mWritten += other.mWritten;
    mPlanned += other.mPlanned;
    mSkippedViews += other.mSkippedViews;
    mRefusedViews += other.mRefusedViews;
    mFailedViews += other.mFailedViews;
    mProblems += other.mProblems;
}

}  // namespace ktannot
