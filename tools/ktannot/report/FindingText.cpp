#include "tools/ktannot/report/FindingText.h"

#include "tools/ktannot/console/TerminalText.h"

#include <map>

namespace ktannot {

namespace {

using ktLegacy::ktFindingCode;
using ktLegacy::ktLegacyFinding;

constexpr std::size_t sMaxNameLength = 80;
constexpr std::size_t sMaxSentenceLength = 400;
/// Findings of one code that are shown.
constexpr std::size_t sShownCount = 3;

/// "999,993".
std::string formatCount(std::size_t count) {
    std::string digits = std::to_string(count);
    for (std::size_t place = digits.size(); place > 3; place -= 3) {
        digits.insert(place - 3, ",");
    }
    return digits;
}

}  // namespace

std::string describeFinding(const ktLegacyFinding& finding) {
    ktLegacyFinding shown;
    shown.mObject = finding.mObject;
    shown.mOffset = finding.mOffset;
    shown.mView = finding.mView;
    shown.mAnnotation = finding.mAnnotation;
    shown.mChild = finding.mChild;
    shown.mViewName = makeTerminalText(finding.mViewName, sMaxNameLength);
    shown.mAnnotationName = makeTerminalText(finding.mAnnotationName, sMaxNameLength);
    // Texts that are no JSON tell their line in the sentence.
    const std::string place = shown.describePlace();
    return (place.empty() || finding.mLine ? "" : place + ": ") + makeTerminalText(finding.mWhat, sMaxSentenceLength);
}

std::vector<std::string> describeFindings(std::span<const ktLegacyFinding> findings) {
    struct Group {
        std::size_t mCount = 0;
        std::size_t mLastLine = 0;
    };
    std::map<ktFindingCode, Group> groups;
    std::vector<std::string> lines;
    for (const ktLegacyFinding& finding : findings) {
        Group& group = groups[finding.mCode];
        if (++group.mCount <= sShownCount) {
            group.mLastLine = lines.size();
            lines.push_back(describeFinding(finding));
        }
    }
    for (const auto& [code, group] : groups) {
        if (group.mCount > sShownCount) {
            lines[group.mLastLine] += " (and " + formatCount(group.mCount - sShownCount) + " more like it)";
        }
    }
    return lines;
}

}  // namespace ktannot
