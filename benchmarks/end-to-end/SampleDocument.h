#pragma once

/// @file
/// Documents to measure with.

#include <string>

namespace ktBenchmark {

enum class SampleContent {
    Callouts,  ///< short lines like those of real archives; every third annotation has rows of six children
    Tables,    ///< much text: three lines of three segments in two fonts each, every fourth annotation with a child
};

/// A variant document with one view of annotations with frames and leaders. The same arguments give the same text.
std::string makeSampleDocument(SampleContent content, int annotationCount, int seed);

}  // namespace ktBenchmark
