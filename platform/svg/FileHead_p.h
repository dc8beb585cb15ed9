#pragma once

/// @file
/// What a file has before its drawing.

#include "platform/svg/SvgWriter.h"

#include <string>
#include <string_view>

namespace kt::svg {

class TextBuffer;

/// The beginning of a file: the root element with its size, what the drawing is called, and the rules of style.
class FileHead {
public:
    /// @param viewBox  as SvgWriter::endDocument takes it.
    FileHead(const SvgWriter::Options& options, const BoundingBox& viewBox);

    /// Everything up to the definitions.
    std::string makeText(std::string_view title, std::string_view description) const;

    /// The page's ground as an element; empty when there is none.
    std::string makeGround() const;

private:
    /// Origin and extent of the drawing along one axis.
    struct Range {
        double mOrigin;
        double mExtent;
    };
    static Range makeRange(float minimum, float maximum);

    void appendRoot(TextBuffer& buffer) const;
    void appendScreenStyle(TextBuffer& buffer) const;

    const SvgWriter::Options& mOptions;
    Range mX;
    Range mY;
};

/// Appends a title element; nothing when the title is empty.
void appendTitle(TextBuffer& buffer, std::string_view title);

}  // namespace kt::svg
