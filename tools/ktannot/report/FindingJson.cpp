#include "tools/ktannot/report/FindingJson.h"

namespace ktannot {

namespace {

using ktLegacy::ktFindingSeverity;
using ktLegacy::ktLegacyFinding;

void writeFinding(JsonWriter& json, const ktLegacyFinding& finding) {
    json.beginObject();
    json.key("code").text(getFindingCodeText(finding.mCode));
    json.key("severity").text(getSeverityWord(finding.getSeverity()));
    json.key("what").text(finding.mWhat);
    if (finding.mObject) {
        json.key("object").number(*finding.mObject);
    }
    if (finding.mOffset) {
        json.key("offset").number(*finding.mOffset);
    }
    if (finding.mView) {
        json.key("view").number(*finding.mView + 1);
    }
    if (finding.mAnnotation) {
        json.key("annotation").number(*finding.mAnnotation);
    }
    if (!finding.mChild.empty()) {
        json.key("child").beginArray();
        for (const std::uint32_t index : finding.mChild) {
            json.number(index);
        }
        json.endArray();
    }
    if (const std::string name = finding.getName(); !name.empty()) {
        json.key("name").text(name);
    }
    if (finding.mLine) {
        json.key("line").number(*finding.mLine);
        json.key("column").number(finding.mColumn.value_or(1));
    }
    if (!finding.mRemedy.empty()) {
        json.key("remedy").text(finding.mRemedy);
    }
    json.endObject();
}

}  // namespace

const char* getSeverityWord(ktFindingSeverity severity) {
    switch (severity) {
        case ktFindingSeverity::Note:
            return "note";
        case ktFindingSeverity::Warning:
            return "warning";
        case ktFindingSeverity::Error:
            break;
    }
    return "error";
}

void writeFindingsJson(JsonWriter& json, std::span<const ktLegacyFinding> findings) {
    json.beginArray();
    for (const ktLegacyFinding& finding : findings) {
        writeFinding(json, finding);
    }
    json.endArray();
}

}  // namespace ktannot
