#pragma once

/// @file
/// Reader of variant documents.

#include "legacy/ktAnnotationLegacyExport.h"
#include "legacy/ktAnnotationView.h"
#include "legacy/variant/ktVariantFinding.h"
#include "platform/system/json/ktVariantJson.h"
#include "platform/system/object/ktPointer.h"
#include "platform/system/stream/ktStreamVersion.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace ktLegacy {

/// Reads the views of variant documents from their JSON text. The views and messages are those that
/// ktAnnotationView::FromVariantMap() gives for the maps of the text; but an annotation is made as soon as its map is
/// read, wherever "ver" stands, so that neither time nor memory is spent on the variants of the whole document.
///
/// A reader keeps its working memory from one document to the next; it is used by one thread at a time.
class KT_ANNOTATION_LEGACY_API ktVariantDocumentReader {
public:
    enum class Outcome : std::uint8_t {
        Read,         ///< the text is a view map or a list; single views may still be null
        NotJson,      ///< the text is no JSON or exceeds a limit of kt::ktJsonReader
        SingleValue,  ///< the text is JSON, but neither a map nor a list
    };

    /// What became of one map of a document. An element of a document's list that is no map counts as an empty one.
    struct View {
        kt::ktPointer<ktAnnotationView> mView;  ///< null when it cannot be read
        kt::ktStreamVersion mVersion;           ///< 0.0 when there is none, or none that is valid
        bool mHasVersion = false;               ///< the key "ver" is there, without which no map is a view map
        std::size_t mEntryCount = 0;            ///< entries of the lists that hold the annotations
        std::size_t mNestedEntryCount = 0;      ///< entries of lists of nested annotations in what could be read
        std::size_t mNestedLostCount = 0;       ///< those of them that are not in the view
        std::vector<ktVariantFinding> mFindings;

        /// The findings that loaders of single maps tell as messages, as texts.
        std::vector<std::string> getMessages() const;
    };

    ktVariantDocumentReader();
    ktVariantDocumentReader(const ktVariantDocumentReader&) = delete;
    ktVariantDocumentReader& operator=(const ktVariantDocumentReader&) = delete;
    ~ktVariantDocumentReader();

    /// Reads one document. The library must be initialised. Throws std::bad_alloc.
    /// @param views  replaced by the document's views, in order; empty unless it is read.
    /// @param error  tells why the text is no JSON.
    Outcome read(std::span<const std::byte> text, std::vector<View>& views, kt::ktJsonError& error);
    /// The numbers of the document read last which are beyond double; they count as infinite.
    const kt::ktJsonOverflow& getOverflow() const;

private:
    class Impl;
    std::unique_ptr<Impl> mImpl;
};

}  // namespace ktLegacy
