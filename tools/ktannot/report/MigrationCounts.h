#pragma once

/// @file
/// Counts of a migration.

#include "tools/ktannot/report/DocumentResult.h"

#include <cstddef>

namespace ktannot {

/// Counts over a batch.
struct MigrationCounts {
    std::size_t mDocuments = 0;        ///< worked on
    std::size_t mFailedDocuments = 0;  ///< refused, unreadable or not migrated as a whole
    std::size_t mSkippedFiles = 0;     ///< ".json" files of folders that hold no view map
    std::size_t mWritten = 0;          ///< views
    std::size_t mPlanned = 0;          ///< views that would be written
    std::size_t mSkippedViews = 0;     ///< drawn before
    std::size_t mRefusedViews = 0;
    std::size_t mFailedViews = 0;  ///< could not be written
    std::size_t mProblems = 0;     ///< problems, messages and warnings

    void add(const DocumentResult& result);
    void add(const MigrationCounts& other);
};

}  // namespace ktannot
