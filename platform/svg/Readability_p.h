#pragma once

/// @file
/// Whether texts can be told from what they lie on.

#include "platform/svg/Affine_p.h"

#include <string>
#include <string_view>
#include <vector>

namespace kt::svg {

class ItemInterface;
class Text;

/// Finds texts whose colour is too close to that of the filled item beneath them. Items come in drawing order and live
/// until clear().
class Readability {
public:
    /// Least contrast that is taken for readable: that of large text in the rules for accessible pages.
    static constexpr double sMinContrast = 3.0;

    /// Contrast of two colours, 1 to 21; 21 when one is not spelt #RRGGBB.
    static double getContrast(std::string_view a, std::string_view b);

    /// Forgets all items.
    void clear();
    /// @param surroundings  maps from what the item's own transform maps to, to the innermost open group.
    void addFill(std::string_view color, const ItemInterface& item, const Affine& surroundings);
    /// An item whose colours are not known: nothing is said of texts on it.
    void addUnknown();

    /// The colour that a text cannot be told from; empty when it can, and after the first such text since clear().
    /// @param map  from the text's own coordinates to the innermost open group.
    std::string_view findUnreadable(std::string_view color, const Text& text, const Affine& map);

private:
    struct Fill {
        std::string_view mColor;
        const ItemInterface* mItem;
        Affine mSurroundings;
    };
    bool isReadable(std::string_view color, std::string_view fill);

    std::vector<Fill> mFills;
    /// The pair of colours that was found readable last: the texts of a drawing have few.
    std::string mReadableColor;
    std::string mReadableFill;
    bool mIsTold = false;
};

}  // namespace kt::svg
