#include "tools/ktannot/batch/DocumentLoader.h"

#include <unistd.h>

#include <utility>

namespace ktannot {

namespace {

using ktLegacy::ktLegacyDocument;

/// Whether a ".json" file that was found in a folder is no document after all: it was not named, and there are many
/// other uses of JSON.
bool isNoDocument(const ktLegacyDocument& document) {
    if (document.getKind() != ktLegacyDocument::Kind::Variant) {
        return false;
    }
    return document.isLoaded() ? !document.holdsViewMap()
                               : document.getFindings().back().mCode == ktLegacy::ktFindingCode::SingleValue;
}

ktLegacyDocument open(const Input& input, std::optional<std::uint64_t> memoryLimit) {
    ktLegacyDocument::Options options;
    options.mMemoryLimit = memoryLimit;
    // A file that changes meanwhile may cost that document, not the whole batch.
    options.mIsMapped = false;
    return input.isStandardInput() ? ktLegacyDocument::open(STDIN_FILENO, options)
                                   : ktLegacyDocument::open(input.mPath, options);
}

}  // namespace

SourceDocument loadDocument(const Input& input, std::optional<std::uint64_t> memoryLimit) {
    if (!input.mFailure.empty()) {
        return makeUnreadableDocument(input, ktLegacy::ktFindingCode::Unreadable, input.mFailure);
    }
    SourceDocument document{input.mSource, open(input, memoryLimit), false};
    document.mIsSkipped = input.mIsJsonFromFolder && isNoDocument(document.mDocument);
    return document;
}

SourceDocument makeUnreadableDocument(const Input& input, ktLegacy::ktFindingCode code, std::string what) {
    return {input.mSource, ktLegacyDocument::makeUnreadable(ktLegacy::ktLegacyFinding(code, std::move(what))), false};
}

}  // namespace ktannot
