#pragma once

/// @file
/// Trees drawn with lines.

#include "tools/ktannot/console/TextOutput.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace ktannot {

/// Prints the lines of a tree, top down. Deep levels share one indentation and tell their level instead, so that the
/// output stays in proportion to the number of lines.
class TextTree {
public:
    enum class Style { Heading, Name, Detail, Problem };

    TextTree(TextOutput& output, bool isColored) : mOutput(output), mIsColored(isColored) {}

    /// The line above the tree.
    void root(std::string_view text);
    /// Goes below the line printed last, which has that many lines directly below it. leave() comes after the last one.
    void enter(std::size_t lineCount);
    void leave();
    /// The next line of the level.
    void line(std::string_view text);

    /// Text in the style's colour, if there are colours.
    std::string paint(Style style, std::string_view text) const;

private:
    static constexpr std::size_t sMaxDrawnLevels = 40;

    TextOutput& mOutput;
    std::string mIndent;                    ///< of the level's parent
    std::vector<std::size_t> mLinesToCome;  ///< by level
    bool mIsColored;
};

}  // namespace ktannot
