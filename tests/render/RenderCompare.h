#pragma once

/// @file
/// Renders drawings with programs that are not ours and compares them with reference pictures.

#include <gtest/gtest.h>

#include <string>

namespace kt::test {

enum class Renderer {
    Rsvg,      ///< rsvg-convert of librsvg
    Chromium,  ///< headless
};

/// Renders an SVG file's text at its natural size (96 pixels to an inch) on white.
/// @param name  of the drawing; tells the files of one test from another's.
/// @return the path of the PNG file; empty, after a test failure, when the renderer is missing or fails.
std::string renderDrawing(Renderer renderer, const std::string& svg, const std::string& name);

/// How much two pictures differ where they differ most: the largest difference, 0 (equal) to 1, of the brightness
/// around a point (a Gaussian of 3 pixels). Edges that two renderers draw differently give up to 0.07, a hairline that
/// is missing 0.12 and more. 1 as well when the pictures cannot be compared.
double comparePictures(const std::string& pathA, const std::string& pathB);

/// Renders with every renderer and compares with tests/data/svg/<name>.png. With KT_BLESS=1 in the environment the
/// reference is replaced by what rsvg-convert draws: look at it before committing it. A missing reference is a failure.
testing::AssertionResult matchesReference(const std::string& svg, const std::string& name, double tolerance);

}  // namespace kt::test
