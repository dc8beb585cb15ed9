#pragma once

/// @file
/// Renders drawings with programs that are not ours and compares them with reference pictures.

#include <gtest/gtest.h>

#include <string>

namespace kt::test {

/// Renders an SVG file's text with librsvg and chromium at its natural size (96 pixels to an inch) on white and
/// compares with tests/data/svg/<name>.png. Pictures differ by what they do where they differ most: by the largest
/// difference, 0 to 1, of the brightness around a point (a Gaussian of 3 pixels). Edges that two renderers draw
/// differently give up to 0.07, a hairline that is missing 0.12 and more. With KT_BLESS=1 in the environment the
/// reference is replaced by what rsvg-convert draws: look at it before committing it. A missing reference or renderer
/// is a failure.
testing::AssertionResult matchesReference(const std::string& svg, const std::string& name, double tolerance);

}  // namespace kt::test
