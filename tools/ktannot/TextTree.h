#pragma once

/// @file
/// Trees drawn with lines.

#include "tools/ktannot/TextOutput.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace ktannot {

/// Prints the lines of a tree, top down. Deep levels share one indentation and tell their level instead, so that the
/// output stays in proportion to the number of lines.
class TextTree {
public:
    enum class Style { Heading, Name, Detail, Problem };

    TextTree(TextOutput& output, bool isColored) : mOutput(output), mIsColored(isColored) {}

    /// The line above the tree.
    void root(std::string_view line);
    /// A line of the current level. @param isLast  no other line of the same parent follows.
    void line(std::string_view line, bool isLast);
    /// Goes below the line printed last; isLast as it had.
    void enter(bool isLast);
    void leave();

    /// Text in the style's colour, if there are colours.
    std::string paint(Style style, std::string_view text) const;

private:
    static constexpr std::size_t sMaxDrawnLevels = 40;

    TextOutput& mOutput;
    std::string mIndent;
    std::size_t mLevel = 0;
    bool mIsColored;
};

}  // namespace ktannot
