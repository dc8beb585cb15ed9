#pragma once

/// @file
/// What became of one document.

#include "document/ktLegacyFinding.h"
#include "tools/ktannot/report/SourceDocument.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ktannot {

/// What became of one view of a document.
struct ViewResult {
    enum class State {
        Written,   ///< drawn or dumped
        Skipped,   ///< drawn before: left alone
        Refused,   ///< could not be made or migrated
        Failed,    ///< could not be written
        Stopped,   ///< not made, because an end was asked for
        Planned,   ///< would be drawn or dumped
        Unwanted,  ///< not asked for: nothing is told of it
    };

    State mState = State::Refused;
    std::string mName;
    std::string mFile;    ///< the drawing; empty when none was meant to be written
    std::string mReason;  ///< why there is no drawing
    /// Of the migration and the drawing; of a refused view the one that says why.
    std::vector<ktLegacy::ktLegacyFinding> mFindings;

    /// Word of --accept that would have let the view pass; may be empty.
    std::string_view getAcceptWord() const {
        constexpr std::string_view sOption = "--accept ";
        const bool isRefused = mState == State::Refused && !mFindings.empty();
        const std::string_view remedy = isRefused ? std::string_view(mFindings.back().mRemedy) : std::string_view();
        return remedy.starts_with(sOption) ? remedy.substr(sOption.size()) : std::string_view();
    }
};

/// The file that a document was read from.
struct SourceFacts {
    bool mIsKnown = false;    ///< false for pipes, and when nobody asked
    std::uint64_t mSize = 0;  ///< bytes
    double mModified = 0.0;   ///< seconds since 1970
    std::string mSha256;      ///< of its bytes, in lower-case hexadecimal
};

/// What became of one document. The document's own findings are kept, its views are released.
struct DocumentResult {
    explicit DocumentResult(SourceDocument document) : mDocument(std::move(document)) {}

    /// A ".json" file of a folder that turned out to be no document.
    bool isSkippedFile() const { return mDocument.mIsSkipped; }
    /// Why there are no drawings of the document at all; empty when there may be some.
    std::string getReason() const { return mReason.empty() ? mDocument.getReason() : mReason; }

    SourceDocument mDocument;
    std::vector<ViewResult> mViews;
    std::string mText;                                 ///< for standard output
    std::string mFile;                                 ///< the dump; empty when none is written
    std::vector<ktLegacy::ktLegacyFinding> mFindings;  ///< beside those of the document and of single views
    std::string mReason;  ///< why the document as a whole was not migrated, beyond what its reading says
    ExitCode mOutcome = ExitCode::AllWell;
    SourceFacts mFacts;
    double mSeconds = 0.0;    ///< that it took
    bool mIsStopped = false;  ///< an end was asked for before all of its views were made
};

}  // namespace ktannot
