#pragma once

/// @file
/// Legacy documents as JSON.

#include "legacy/ktAnnotationInterface.h"
#include "legacy/ktAnnotationRaster.h"
#include "legacy/ktAnnotationText.h"
#include "legacy/ktAnnotationView.h"
#include "tools/ktannot/report/JsonWriter.h"
#include "tools/ktannot/report/SourceDocument.h"

namespace ktannot {

/// Writes what a document holds for programs: every member of the legacy model under the names of the tool's
/// machine-readable output.
class LegacyJson {
public:
    explicit LegacyJson(JsonWriter& json) : mJson(json) {}

    /// One line for a document: its content, or why there is none.
    void writeDocument(const SourceDocument& document);
    /// The members "source", "refused" and "findings" of a document without content.
    void writeRefusal(const SourceDocument& document);
    /// The members "messages", "problems", "findings" and "limit".
    void writeFindings(const ktLegacy::ktLegacyDocument& document);
    /// One view with everything in it; null for a missing one.
    void writeView(const ktLegacy::ktLegacyDocument::View& view, ktLegacy::ktLegacyDocument::Kind kind);

    static const char* getKindWord(ktLegacy::ktLegacyDocument::Kind kind);

private:
    void writeAnnotation(const ktLegacy::ktAnnotationInterface* annotation);
    void writeLeaders(const ktLegacy::ktAnnotationInterface& annotation);
    void writeMeasureLeaders(const ktLegacy::ktAnnotationInterface& annotation);
    void writeChildren(const ktLegacy::ktAnnotationInterface& annotation);
    void writeText(const ktLegacy::ktAnnotationText& text);
    void writeSegment(const ktLegacy::ktAnnotationText::TextSegment& segment);
    void writeProperties(const ktLegacy::ktAnnotationText::TextProperties& properties);

    JsonWriter& mJson;
};

}  // namespace ktannot
