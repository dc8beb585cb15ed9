#include "tools/ktannot/batch/AcceptedLosses.h"

#include "document/ktViewDrawing.h"

#include <algorithm>
#include <array>

namespace ktannot {

namespace {

using ktLegacy::ktViewDrawing;

struct Word {
    std::string_view mName;
    int mBits;
};

constexpr std::array<Word, 6> sWords{{
    {"view-metadata", ktViewDrawing::AcceptViewMetadata},
    {"known-metadata", ktViewDrawing::AcceptKnownMetadata},
    {"other-metadata", ktViewDrawing::AcceptOtherMetadata},
    {"all",
     ktViewDrawing::AcceptViewMetadata | ktViewDrawing::AcceptKnownMetadata | ktViewDrawing::AcceptOtherMetadata},
    {"missing-pictures", ktViewDrawing::AcceptMissingPictures},
    {"failed-annotations", ktViewDrawing::AcceptFailedAnnotations},
}};

}  // namespace

std::optional<int> parseAcceptedLosses(std::string_view list) {
    int bits = 0;
    while (true) {
        const std::size_t comma = list.find(',');
        const std::string_view name = list.substr(0, comma);
        const auto* word =
            std::find_if(sWords.begin(), sWords.end(), [name](const Word& known) { return known.mName == name; });
        if (word == sWords.end()) {
            return std::nullopt;
        }
        bits |= word->mBits;
        if (comma == std::string_view::npos) {
            return bits;
        }
        list.remove_prefix(comma + 1);
    }
}

}  // namespace ktannot
