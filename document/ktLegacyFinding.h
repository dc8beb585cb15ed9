#pragma once

/// @file
/// Something that is wrong with a document, lost or changed on its way to a drawing, with its place.

#include "document/ktLegacyDocumentExport.h"
#include "legacy/ktFindingCode.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ktLegacy {

/// A finding: what, how bad, where, and what helps. A plain value; what is not known about its place is absent.
///
/// In binary documents the place is an object and a byte; in variant ones a view, an annotation in it and entries of
/// lists of nested annotations; in texts that are no JSON a line and a column.
struct KT_LEGACY_DOCUMENT_API ktLegacyFinding {
    ktLegacyFinding() = default;
    /// @param what  the sentence; by default that of the code.
    explicit ktLegacyFinding(ktFindingCode code, std::string what = {});

    ktFindingSeverity getSeverity() const { return getFindingKind(mCode).mSeverity; }

    /// "view 2 'MBD_A', annotation 17 'Note (22)', nested 0/2", "object 3, byte 120", "line 4, column 9"; empty when
    /// nothing is known. Views count from 1 here, as everywhere that people read, annotations from 0. Names are as in
    /// the document: they may hold any bytes.
    std::string describePlace() const;
    /// The names of view and annotation with a slash between them; one of them alone when the other is not known.
    std::string getName() const;

    ktFindingCode mCode = ktFindingCode::InternalError;
    std::string mWhat;                       ///< one English sentence, in UTF-8: other bytes are escaped as `\xNN`
    std::optional<std::uint32_t> mObject;    ///< id of the object; 0 for the document itself
    std::optional<std::uint64_t> mOffset;    ///< bytes from the document's beginning
    std::optional<std::size_t> mView;        ///< index in the document's views, from 0
    std::optional<std::size_t> mAnnotation;  ///< index in the view's annotations, or the one it would have had
    std::vector<std::uint32_t> mChild;       ///< indices in lists of nested annotations, outermost first
    std::string mViewName;                   ///< as in the document
    std::string mAnnotationName;             ///< of the innermost annotation that could be named
    std::optional<std::uint64_t> mLine;      ///< from 1
    std::optional<std::uint64_t> mColumn;    ///< characters from 1
    std::string mRemedy;                     ///< the option of the tool that helps; empty when there is none
};

/// The text with every byte that is no part of valid UTF-8 written as `\xNN`.
KT_LEGACY_DOCUMENT_API std::string escapeInvalidUtf8(std::string_view text);

}  // namespace ktLegacy
