#include "legacy/ktFindingCode.h"

#include <algorithm>
#include <array>

namespace ktLegacy {

namespace {

constexpr std::array sKinds{
#define KT_FINDING_KIND(NAME, NUMBER, SEVERITY, SENTENCE, WHEN, WHAT_TO_DO) \
    ktFindingKind{ktFindingCode::NAME, ktFindingSeverity::SEVERITY, #NAME, SENTENCE, WHEN, WHAT_TO_DO},
    KT_LEGACY_FINDINGS(KT_FINDING_KIND)
#undef KT_FINDING_KIND
};

constexpr bool isBefore(const ktFindingKind& a, const ktFindingKind& b) { return a.mCode < b.mCode; }

static_assert(std::adjacent_find(sKinds.begin(), sKinds.end(),
                                 [](const ktFindingKind& a, const ktFindingKind& b) { return !isBefore(a, b); }) ==
                  sKinds.end(),
              "codes ascend, and none stands twice");

}  // namespace

std::span<const ktFindingKind> getFindingKinds() { return sKinds; }

const ktFindingKind& getFindingKind(ktFindingCode code) {
    return *std::lower_bound(sKinds.begin(), sKinds.end(), code,
                             [](const ktFindingKind& kind, ktFindingCode wanted) { return kind.mCode < wanted; });
}

bool isLoaderMessage(ktFindingCode code) {
    return code >= ktFindingCode::InvalidVersion && code <= ktFindingCode::InvalidSizeLength;
}

std::string getFindingCodeText(ktFindingCode code) { return "KT" + std::to_string(static_cast<unsigned int>(code)); }

}  // namespace ktLegacy
