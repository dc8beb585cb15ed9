#pragma once

/// @file
/// Glyph outlines of a file.

#include "platform/svg/Path.h"
#include "platform/svg/TextBuffer_p.h"

#include <memory>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace kt::svg {

/// Collects the outlines that a file uses; each is defined once, under the ids g1, g2, ... in the order of first use.
class GlyphDefinitions {
public:
    /// Whether an id is of the form that this class gives.
    static bool isReserved(std::string_view id);

    /// Keeps what outlines live in: their addresses must stay theirs.
    void keepOwner(std::shared_ptr<const void> owner);

    /// The number of the outline's id; 0 when there is nothing to draw.
    unsigned define(const Path& outline);

    bool isEmpty() const { return mLastNumber == 0; }
    /// Appends the definitions' elements; they are valid until one is added.
    void appendElements(std::vector<std::string_view>& pieces) const;

private:
    std::unordered_map<const Path*, unsigned> mNumbers;  ///< 0 for outlines without anything to draw
    std::unordered_set<std::shared_ptr<const void>> mOwners;
    unsigned mLastNumber = 0;
    TextBuffer mElements;
};

}  // namespace kt::svg
