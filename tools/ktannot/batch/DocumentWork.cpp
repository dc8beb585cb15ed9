#include "tools/ktannot/batch/DocumentWork.h"

#include "tools/ktannot/batch/DocumentLoader.h"
#include "tools/ktannot/files/FileHash.h"

#include <sys/stat.h>

#include <chrono>
#include <exception>
#include <new>
#include <span>
#include <string_view>

namespace ktannot {

namespace {

SourceFacts findFacts(const Input& input) {
    SourceFacts facts;
    struct stat status {};
    if (input.mPath.empty() || stat(input.mPath.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return facts;
    }
    facts.mSize = static_cast<std::uint64_t>(status.st_size);
    facts.mModified = getSeconds(status.st_mtim);
    facts.mSha256 = hashFile(input.mPath);
    facts.mIsKnown = !facts.mSha256.empty();
    return facts;
}

}  // namespace

DocumentResult DocumentWork::makeFailedResult(const Input& input, ExitCode outcome, std::string reason) {
    if (reason.empty()) {
        static constexpr std::string_view sNothing = "[]";
        DocumentResult stopped(
            SourceDocument{input.mSource, ktLegacy::ktLegacyDocument::read(std::as_bytes(std::span(sNothing))), false});
        stopped.mOutcome = outcome;
        stopped.mIsStopped = true;
        return stopped;
    }
    const ktLegacy::ktFindingCode code = outcome == ExitCode::InternalError ? ktLegacy::ktFindingCode::InternalError
                                                                            : ktLegacy::ktFindingCode::MemoryLimit;
    DocumentResult result(makeUnreadableDocument(input, code, std::move(reason)));
    result.mOutcome = outcome;
    return result;
}

DocumentResult DocumentWork::migrate(const Input& input, const DocumentMigrator::ViewListener& onView) {
    try {
        return mMigrator.migrate(input, onView);
    } catch (const std::bad_alloc&) {
        return makeFailedResult(input, ExitCode::LimitReached,
                                "there is not enough memory for this document; --memory-limit allows more");
    } catch (const std::exception& exception) {
        return makeFailedResult(input, ExitCode::InternalError,
                                std::string("internal error, please report it: ") + exception.what());
    }
}

DocumentReport DocumentWork::run(const Input& input, const DocumentMigrator::ViewListener& onView) {
    const auto start = std::chrono::steady_clock::now();
    const SourceFacts facts = mNeedsFacts ? findFacts(input) : SourceFacts();
    DocumentResult result = migrate(input, onView);
    result.mFacts = facts;
    result.mSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return mReporter.report(result);
}

}  // namespace ktannot
