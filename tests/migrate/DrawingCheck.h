#pragma once

/// @file
/// What every folder of drawings must be.

#include <map>
#include <string>

namespace ktannot::test {

/// The files below a folder: content by path below it. Empty when there is no such folder.
std::map<std::string, std::string> readTree(const std::string& folder);

/// What is wrong with a drawing, one complaint in a line: not well-formed, not SVG, nested deeper than readers take, or
/// with script, entities or references to elsewhere. Empty when all is well.
std::string findFaults(const std::string& drawing);

/// The faults of all files of a tree, with names; a file that is no drawing is a fault. Empty when all is well.
std::string findFaults(const std::map<std::string, std::string>& tree);

}  // namespace ktannot::test
