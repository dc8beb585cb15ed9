#include "legacy/variant/MapReport_p.h"
#include "platform/system/memory/ktLimits.h"

#include <utility>

namespace ktLegacy::reading {

MapReport::NestedList::NestedList(MapReport& report, std::size_t entryCount) : mReport(report) {
    report.mChild.push_back(0);
    report.mNested.mEntries += entryCount;
}

MapReport::NestedList::~NestedList() { mReport.mChild.pop_back(); }

bool MapReport::NestedList::isTooDeep() const {
    // The top annotation is at level 1, the entries of its list at level 2.
    return mReport.mChild.size() >= static_cast<std::size_t>(kt::sMaxAnnotationDepth);
}

std::string MapReport::getText(ktFindingCode code, std::string_view detail) {
    constexpr std::string_view sPlaceholder = "...";
    std::string text = getFindingKind(code).mSentence;
    if (const std::size_t place = text.find(sPlaceholder); place != std::string::npos) {
        text.replace(place, sPlaceholder.size(), detail);
    }
    return text;
}

void MapReport::tell(ktFindingCode code, std::string_view detail) {
    if (mFindings != nullptr) {
        mFindings->push_back(
            {code, std::string(detail), mAnnotation, mChild, mName != nullptr ? *mName : std::string()});
    } else if (isLoaderMessage(code)) {
        mMessages->push_back(getText(code, detail));
    }
}

void MapReport::append(std::vector<ktVariantFinding>&& findings, std::size_t offset, const NestedCount& nested) {
    mNested.mEntries += nested.mEntries;
    mNested.mLost += nested.mLost;
    for (ktVariantFinding& finding : findings) {
        finding.mAnnotation += offset;
        mFindings->push_back(std::move(finding));
    }
}

}  // namespace ktLegacy::reading
