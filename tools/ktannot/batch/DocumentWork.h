#pragma once

/// @file
/// One document after the other, whatever happens.

#include "tools/ktannot/batch/DocumentMigrator.h"
#include "tools/ktannot/batch/Input.h"
#include "tools/ktannot/report/DocumentReporter.h"

#include <string>

namespace ktannot {

/// Migrates documents and puts what became of them into words; a document that fails in any way that a program survives
/// costs itself alone. Each thread or process has one of its own.
class DocumentWork {
public:
    /// @param options  must outlive this.
    DocumentWork(const MigrationOptions& options, const DocumentReporter& reporter, bool needsFacts)
        : mMigrator(options), mReporter(reporter), mNeedsFacts(needsFacts) {}

    /// @param onView  called after each view, with its number from 1.
    DocumentReport run(const Input& input, const DocumentMigrator::ViewListener& onView = {});

    /// A document of which nothing can be told but why; an empty reason is that an end was asked for.
    static DocumentResult makeFailedResult(const Input& input, ExitCode outcome, std::string reason);

private:
    DocumentResult migrate(const Input& input, const DocumentMigrator::ViewListener& onView);

    DocumentMigrator mMigrator;
    DocumentReporter mReporter;
    bool mNeedsFacts;
};

}  // namespace ktannot
