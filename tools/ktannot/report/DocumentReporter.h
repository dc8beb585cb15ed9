#pragma once

/// @file
/// From results to reports.

#include "tools/ktannot/report/DocumentReport.h"
#include "tools/ktannot/report/DocumentResult.h"
#include "tools/ktannot/report/ReportForm.h"

#include <string>
#include <string_view>

namespace ktannot {

class JsonWriter;

/// Puts what became of documents into words, for people and for programs.
class DocumentReporter {
public:
    /// @param form          of the report for programs.
    /// @param namesResults  whether people want to read the name of every drawing.
    DocumentReporter(ReportForm form, bool namesResults) : mForm(form), mNamesResults(namesResults) {}

    DocumentReport report(const DocumentResult& result) const;

private:
    void tell(const DocumentResult& result, DocumentReport& report) const;
    static void tellFinding(const std::string& source, const ktLegacy::ktLegacyFinding& finding,
                            DocumentReport& report);
    void tellView(const DocumentResult& result, std::size_t index, DocumentReport& report) const;
    void writeWhole(JsonWriter& json, const DocumentResult& result) const;
    void writeLine(JsonWriter& json, const DocumentResult& result) const;

    ReportForm mForm;
    bool mNamesResults;
};

}  // namespace ktannot
