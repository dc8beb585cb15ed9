#pragma once

/// @file
/// Documents to measure with.

#include <string>

namespace ktBenchmark {

/// A variant document with one view of annotations like those of real archives: three lines of three segments with
/// tolerances, a frame, a leader with a head, and for every fourth a child. The same arguments give the same text.
std::string makeSampleDocument(int annotationCount, int seed);

}  // namespace ktBenchmark
