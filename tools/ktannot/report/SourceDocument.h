#pragma once

/// @file
/// A document of the command line.

#include "document/ktLegacyDocument.h"
#include "tools/ktannot/report/ExitCode.h"

#include <string>

namespace ktannot {

/// A document with the name that the command line has for it.
struct SourceDocument {
    /// What reading it alone means for the exit code.
    ExitCode getOutcome() const {
        return mIsSkipped ? ExitCode::AllWell : static_cast<ExitCode>(mDocument.getOutcome());
    }
    /// Why there are no views: place and remedy. Empty when it is loaded or skipped.
    std::string getReason() const { return mIsSkipped ? std::string() : mDocument.getReason(); }

    std::string mSource;
    ktLegacy::ktLegacyDocument mDocument;
    bool mIsSkipped = false;  ///< a ".json" file of a folder that holds no view map
};

}  // namespace ktannot
