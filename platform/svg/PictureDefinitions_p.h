#pragma once

/// @file
/// Pictures of a file.

#include "platform/svg/Picture_p.h"
#include "platform/svg/TextBuffer_p.h"

#include <deque>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kt::svg {

/// Collects the pictures that a file shows; each is embedded once, however often it is shown, as an image of one unit's
/// size under the ids p1, p2, ... in the order of first use.
class PictureDefinitions {
public:
    /// What became of a picture.
    struct Entry {
        unsigned mNumber = 0;  ///< of the id; 0: there is a problem
        bool mIsDamaged = false;
        const Picture::Problem* mProblem = nullptr;
    };

    /// Whether an id is of the form that this class gives.
    static bool isReserved(std::string_view id);

    /// Embeds the picture unless it is there already.
    Entry define(std::string_view source);

    bool isEmpty() const { return mElements.empty(); }
    /// Appends the elements; they are valid as long as this object.
    void appendElements(std::vector<std::string_view>& pieces) const;

private:
    std::deque<TextBuffer> mElements;
    std::unordered_map<std::string_view, Entry> mEntries;  ///< by the data URIs in the elements
};

}  // namespace kt::svg
