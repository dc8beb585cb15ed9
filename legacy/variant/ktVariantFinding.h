#pragma once

/// @file
/// What the loaders of maps find.

#include "legacy/ktFindingCode.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace ktLegacy {

/// Something that is wrong with a view map, and where in it. A plain value.
struct KT_ANNOTATION_LEGACY_API ktVariantFinding {
    /// The index of findings that are about the view itself.
    static constexpr std::size_t sNoAnnotation = std::numeric_limits<std::size_t>::max();

    /// Whether it is one of the messages that loaders of single maps append to their caller's list, too.
    bool isMessage() const;
    /// Its sentence, with the detail where it has one.
    std::string getText() const;

    ktFindingCode mCode = ktFindingCode::InvalidVersion;
    std::string mDetail;                      ///< takes the place of "..." in the sentence
    std::size_t mAnnotation = sNoAnnotation;  ///< index in the view's annotations, or the one it would have had
    std::vector<std::uint32_t> mChild;        ///< indices of entries in lists of nested annotations, outermost first
    std::string mName;                        ///< of the innermost annotation that could be named
};

}  // namespace ktLegacy
