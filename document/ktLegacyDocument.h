#pragma once

/// @file
/// One legacy document, of either kind.

#include "document/ktLegacyDocumentExport.h"
#include "document/ktLegacyFinding.h"
#include "document/ktOutcome.h"
#include "legacy/ktAnnotationView.h"
#include "platform/system/object/ktPointer.h"
#include "platform/system/stream/ktStreamVersion.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace ktLegacy {

/// What a document holds and everything that is wrong with it. The kind is told by the content: what begins as a binary
/// document is one, everything else is taken for a variant document.
///
/// A document is built and used by one thread; separate documents may be worked on by separate threads and have nothing
/// in common. The library must be initialised as long as a document lives. Views may outlive their document.
class KT_LEGACY_DOCUMENT_API ktLegacyDocument {
public:
    enum class Kind : std::uint8_t { Stream, Variant };

    enum class State : std::uint8_t {
        Loaded,      ///< the views are there, perhaps with findings
        Refused,     ///< nothing of it could be used: the last finding says why
        Unreadable,  ///< it could not be read at all: the last finding says why; a retry may help
    };

    struct Options {
        /// Bytes of memory that reading the document may take. By default a binary document may take what
        /// kt::getMemoryBudget() gives for its size; a variant document has no limit.
        std::optional<std::uint64_t> mMemoryLimit;
        /// Maps files instead of copying them. A file that is cut short while it is mapped ends the process; one that
        /// is copied cannot do harm, and is told when it changed meanwhile.
        bool mIsMapped = true;
    };

    struct View {
        kt::ktPointer<ktAnnotationView> mView;  ///< null when it could not be made, or was released
        kt::ktStreamVersion mVersion;           ///< of the view; 0.0 in variant documents when there is no valid one
        std::optional<std::uint32_t> mObject;   ///< id of the view's object; in binary documents only
        bool mIsMissing = false;                ///< it could not be made
    };

    /// Something that is wrong, in the form that programs know from before there were findings.
    struct Problem {
        std::uint32_t mObject = 0;  ///< 0 for the document, and in variant documents
        std::uint64_t mOffset = 0;  ///< 0 in variant documents
        std::string mWhat;          ///< may hold bytes of the document
    };

    /// Memory that the tree of a variant document may take for each of its bytes.
    static constexpr std::uint64_t sVariantMemoryPerByte = 16;

    /// Reads a file. Throws nothing: what finds no memory is unreadable.
    static ktLegacyDocument open(const std::string& path, const Options& options);
    static ktLegacyDocument open(const std::string& path) { return open(path, Options()); }
    /// Reads an open file, such as standard input; the descriptor stays the caller's. Throws nothing.
    static ktLegacyDocument open(int descriptor, const Options& options);
    /// Reads a document from memory; the bytes are needed during the call only. Throws std::bad_alloc.
    static ktLegacyDocument read(std::span<const std::byte> bytes, const Options& options);
    static ktLegacyDocument read(std::span<const std::byte> bytes) { return read(bytes, Options()); }
    /// A document that cannot be read, for callers that know why.
    static ktLegacyDocument makeUnreadable(ktLegacyFinding why);

    ktLegacyDocument(ktLegacyDocument&&) noexcept;
    ktLegacyDocument& operator=(ktLegacyDocument&&) noexcept;
    ~ktLegacyDocument();

    State getState() const { return mState; }
    bool isLoaded() const { return mState == State::Loaded; }
    Kind getKind() const { return mKind; }
    /// Version of a binary document; 0.0 for variant documents, where each view has its own.
    kt::ktStreamVersion getVersion() const { return mVersion; }
    /// Size in bytes.
    std::uint64_t getSize() const { return mSize; }
    /// Whether the error flag was set while an object of a binary document was read.
    bool hasStreamError() const { return mHasStreamError; }
    /// Whether a variant document holds anything with a version, without which no map is a view map.
    bool holdsViewMap() const { return mHoldsViewMap; }

    /// The views in order. In a binary document those that its metadata objects list, in the order of the records and
    /// of their lists, then those that none of them lists; each once.
    const std::vector<View>& getViews() const { return mViews; }
    /// Releases one view, so that the views of a large document need not live together.
    void releaseView(std::size_t index) { mViews[index].mView.reset(); }

    /// Everything that is wrong, in the order in which it was met.
    const std::vector<ktLegacyFinding>& getFindings() const { return mFindings; }
    /// Why there are no views: place and remedy. Empty when the document is loaded.
    std::string getReason() const;
    /// The sentence of the limit that was reached; empty when none was.
    const std::string& getLimit() const { return mLimit; }
    /// The messages of the map loaders, in order.
    std::vector<std::string> getMessages() const;
    const std::vector<Problem>& getProblems() const { return mProblems; }

    /// What reading the document means by itself.
    ktOutcome getOutcome() const;

private:
    class Reader;

    ktLegacyDocument();

    std::vector<View> mViews;
    std::vector<ktLegacyFinding> mFindings;
    std::vector<Problem> mProblems;
    std::string mLimit;
    std::uint64_t mSize = 0;
    kt::ktStreamVersion mVersion;
    State mState = State::Loaded;
    Kind mKind = Kind::Variant;
    bool mHasStreamError = false;
    bool mHoldsViewMap = false;
    bool mLacksMemory = false;  ///< an object was lost because the machine had no memory
};

}  // namespace ktLegacy
