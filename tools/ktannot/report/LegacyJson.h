#pragma once

/// @file
/// Legacy documents as JSON.

#include "legacy/ktAnnotationInterface.h"
#include "legacy/ktAnnotationRaster.h"
#include "legacy/ktAnnotationText.h"
#include "legacy/ktAnnotationView.h"
#include "tools/ktannot/LegacyDocument.h"
#include "tools/ktannot/report/JsonWriter.h"

namespace ktannot {

/// Writes what a document holds for programs: every member of the legacy model under the names of the tool's
/// machine-readable output.
class LegacyJson {
public:
    explicit LegacyJson(JsonWriter& json) : mJson(json) {}

    /// One line for a document: its content, or why there is none.
    void writeDocument(const LegacyDocument& document);
    /// The members "source" and "refused" of a document without content.
    void writeRefusal(const LegacyDocument& document);
    /// The members "messages" and "problems".
    void writeFindings(const LegacyDocument& document);
    /// One view with everything in it; null for a missing one.
    void writeView(const LegacyDocument::View& view, LegacyDocument::Kind kind);

    static const char* getKindWord(LegacyDocument::Kind kind);

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
