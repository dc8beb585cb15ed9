#pragma once

/// @file
/// Glyph outlines of a file.

#include "platform/svg/Path.h"
#include "platform/svg/TextBuffer_p.h"

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace kt::svg {

/// Collects the outlines that a file uses; each is defined once, under the ids g1, g2, ... in the order of first use.
class GlyphDefinitions {
public:
    GlyphDefinitions() : mBuffer(mText) {}
    GlyphDefinitions(const GlyphDefinitions&) = delete;
    GlyphDefinitions& operator=(const GlyphDefinitions&) = delete;

    /// Whether an id is of the form that this class gives.
    static bool isReserved(std::string_view id);

    /// Keeps what outlines live in: their addresses must stay theirs.
    void keepOwner(std::shared_ptr<const void> owner);

    /// The number of the outline's id; 0 when there is nothing to draw.
    unsigned define(const Path& outline);

    /// The definitions' elements; empty when there are none.
    std::string_view getElements();

private:
    std::unordered_map<const Path*, unsigned> mNumbers;
    std::unordered_set<std::shared_ptr<const void>> mOwners;
    std::string mText;
    TextBuffer mBuffer;
};

}  // namespace kt::svg
