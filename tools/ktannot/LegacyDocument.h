#pragma once

/// @file
/// One legacy document in memory.

#include "legacy/ktAnnotationView.h"
#include "legacy/variant/ktVariantDocumentReader.h"
#include "platform/system/object/ktPointer.h"
#include "tools/ktannot/batch/InputSet.h"
#include "tools/ktannot/report/ExitCode.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace ktannot {

/// What became of reading one input: its views with everything that was wrong. The kind is told by the content: what
/// begins as a document stream is one, everything else is taken for a variant document.
///
/// A document is built and used by one thread. The library must be initialised as long as it lives.
class LegacyDocument {
public:
    enum class Kind { Stream, Variant };

    enum class State {
        Loaded,      ///< the views are there, perhaps with problems
        Refused,     ///< nothing of it could be used: getReason() says why
        Unreadable,  ///< it could not be read at all: getReason() says why; a retry may help
        Skipped,     ///< a ".json" file of a folder that holds no view map
    };

    /// Something that is wrong with one object and did not stop the others.
    struct Problem {
        std::uint32_t mObject = 0;         ///< id of the object, 0 for the document
        std::uint64_t mOffset = 0;         ///< bytes from the document's beginning to where it was seen
        std::string mWhat;                 ///< may hold bytes of the document
        std::optional<std::size_t> mView;  ///< index of the view that it is about
    };

    struct View {
        kt::ktPointer<ktLegacy::ktAnnotationView> mView;  ///< null when it is missing or released
        std::string mVersion;                             ///< of variant documents only: each view has its own
        std::size_t mMessagesBegin = 0;                   ///< the view's part of the messages
        std::size_t mMessagesEnd = 0;
        bool mIsMissing = false;  ///< it could not be made
    };

    /// Memory that the tree of a variant document may take for each of its bytes.
    static constexpr std::uint64_t sVariantMemoryPerByte = 16;

    /// Reads an input, whatever it is. Throws nothing: what finds no memory is unreadable.
    /// @param memoryLimit  bytes that reading may take. By default a stream has the budget that goes with its size and
    /// a
    ///                     variant document has none.
    static LegacyDocument load(const Input& input, std::optional<std::uint64_t> memoryLimit = std::nullopt);
    /// Reads a document from memory; the bytes are needed during the call only. Throws std::bad_alloc.
    /// @param memoryLimit  as above.
    static LegacyDocument load(const std::string& source, std::span<const std::byte> bytes,
                               std::optional<std::uint64_t> memoryLimit = std::nullopt);

    LegacyDocument(LegacyDocument&&) noexcept = default;
    LegacyDocument& operator=(LegacyDocument&&) noexcept = default;
    ~LegacyDocument() = default;

    /// As given on the command line.
    const std::string& getSource() const { return mSource; }
    State getState() const { return mState; }
    bool isLoaded() const { return mState == State::Loaded; }
    /// Why there are no views: place and remedy. Empty unless refused or unreadable.
    const std::string& getReason() const { return mReason; }
    Kind getKind() const { return mKind; }
    /// Version of a document stream; empty for variant documents.
    const std::string& getVersion() const { return mVersion; }
    /// Whether the error flag was set while an object of a document stream was read.
    bool hasStreamError() const { return mHasStreamError; }
    /// The loader's, in order.
    const std::vector<std::string>& getMessages() const { return mMessages; }
    const std::vector<Problem>& getProblems() const { return mProblems; }
    const std::vector<View>& getViews() const { return mViews; }
    /// The limit that was reached, with its size; empty when none was.
    const std::string& getLimit() const { return mLimit; }

    /// What reading the document alone means for the exit code.
    ExitCode getOutcome() const;

    /// Releases one view, so that the views of a large document need not live together.
    void releaseView(std::size_t index) { mViews[index].mView.reset(); }

private:
    explicit LegacyDocument(std::string source, std::optional<std::uint64_t> memoryLimit = std::nullopt)
        : mSource(std::move(source)), mMemoryLimit(memoryLimit) {}

    void read(std::span<const std::byte> bytes, bool isSkippedWithoutViewMap);
    void readStream(std::span<const std::byte> bytes);
    void readVariant(std::span<const std::byte> bytes, bool isSkippedWithoutViewMap);
    void addView(ktLegacy::ktVariantDocumentReader::View& read);
    /// Whether annotations of a variant document were not read because they are nested too deeply.
    bool reachesNestingLimit(std::span<const std::byte> bytes) const;
    void end(State state, std::string reason);

    std::string mSource;
    std::string mReason;
    std::string mVersion;
    std::string mLimit;
    std::vector<View> mViews;
    std::vector<std::string> mMessages;
    std::vector<Problem> mProblems;
    std::optional<std::uint64_t> mMemoryLimit;
    State mState = State::Loaded;
    Kind mKind = Kind::Variant;
    bool mHasStreamError = false;
};

}  // namespace ktannot
