#pragma once

/// @file
/// Counts of what documents hold.

#include "tools/ktannot/report/CountOf.h"
#include "tools/ktannot/report/SourceDocument.h"

#include <cstddef>
#include <string>

namespace ktannot {

/// Numbers of one or more documents.
struct DocumentCensus {
    std::size_t mDocuments = 0;
    std::size_t mRefusedDocuments = 0;  ///< as a whole
    std::size_t mUnreadableDocuments = 0;
    std::size_t mSkippedFiles = 0;  ///< not counted as documents
    std::size_t mViews = 0;         ///< that could be made
    std::size_t mRefusedViews = 0;
    std::size_t mAnnotations = 0;  ///< at the top level of views
    std::size_t mChildren = 0;     ///< below them
    std::size_t mFindings = 0;

    void add(const SourceDocument& document);

    /// "2 views, 14 annotations (22 children)".
    std::string describeContent() const;
};

}  // namespace ktannot
