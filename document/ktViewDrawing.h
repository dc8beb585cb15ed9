#pragma once

/// @file
/// Drawings of legacy views.

#include "document/ktLegacyDocumentExport.h"
#include "document/ktLegacyFinding.h"
#include "legacy/ktAnnotationView.h"
#include "platform/annotation/ktCadAnnotationView.h"
#include "platform/annotation/ktCadViewSvgWriter.h"
#include "platform/system/object/ktPointer.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace ktLegacy {

/// Turns legacy views into drawings, one after the other: an SVG file each. Annotations are migrated and written one by
/// one, so that memory is needed for the drawing's text and one annotation.
///
/// A view is drawn as a whole or not at all: the first annotation that cannot be migrated refuses it, unless the
/// options accept that. It keeps fonts and measured text from view to view; one object serves one thread at a time, and
/// objects of different threads have nothing in common.
class KT_LEGACY_DOCUMENT_API ktViewDrawing {
public:
    /// What may be missing in a drawing; without the bit, a view that has it is refused.
    enum Accepted : int {
        AcceptViewMetadata = 1,        ///< any metadata of views
        AcceptKnownMetadata = 2,       ///< metadata of annotations under the well-known keys
        AcceptOtherMetadata = 4,       ///< metadata of annotations under any other key
        AcceptMissingPictures = 8,     ///< a crossed box with the name takes the place of a picture that is missing
        AcceptFailedAnnotations = 16,  ///< annotations that cannot be migrated are left out
    };

    /// Gives the data of the picture with that name, as a data URI or as the bytes of a PNG, JPEG, GIF or WebP file;
    /// false when there is none.
    using PictureProvider = std::function<bool(const std::string& name, std::string& data)>;

    struct Options {
        int mAccepted = 0;       ///< bits of Accepted
        float mHeadSize = 3.0F;  ///< of leader heads, in millimetres; finite and above 0
        kt::ktCadViewSvgWriter::Options mWriter;
    };

    /// @param pictures  empty: there are no pictures.
    explicit ktViewDrawing(const Options& options, PictureProvider pictures = {});
    ktViewDrawing(const ktViewDrawing&) = delete;
    ktViewDrawing& operator=(const ktViewDrawing&) = delete;
    ~ktViewDrawing();

    /// Draws a view.
    /// @return false when it is refused; the findings say why.
    bool draw(const ktAnnotationView& view);
    /// The same, releasing each annotation of the view as soon as it is drawn.
    bool drawAndRelease(ktAnnotationView& view);
    /// The file's text in pieces, in order: write them one by one. Valid until the next view; empty after a refusal.
    const std::vector<std::string_view>& getPieces() const;
    /// The file's text as a whole.
    std::string getSvg() const;

    /// The view in the current model instead of a drawing; null when it is refused.
    kt::ktPointer<kt::ktCadAnnotationView> migrate(const ktAnnotationView& view);

    /// What was found with the last view, in order. Their view's index is not known here: callers set it.
    const std::vector<ktLegacyFinding>& getFindings() const;
    /// Why the last view was refused: the lines of the log, the cause first, joined by colons. Empty when it was not.
    const std::string& getReason() const;
    /// The lines that the last view's migration wrote to the log, in order.
    const std::vector<std::string>& getLogLines() const;

private:
    class Impl;
    std::unique_ptr<Impl> mImpl;
};

}  // namespace ktLegacy
