#pragma once

/// @file
/// Scripts and clusters of a line's characters.

#include <hb.h>

#include <cstddef>
#include <string_view>
#include <vector>

namespace kt::text {

/// Finds the script of every character. Characters that many scripts share take the script of the text before them, at
/// the line's start that of the text behind; a line without any script counts as Latin.
void findScripts(std::u32string_view line, std::vector<hb_script_t>& scripts);

/// Number of characters at start that must not be torn apart: a base character with the marks, joiners and selectors
/// that follow it. Overlong clusters are cut.
std::size_t getClusterLength(std::u32string_view line, std::size_t start);

/// Whether the character begins a cluster by its own nature rather than because an overlong cluster was cut before it.
bool startsCluster(std::u32string_view line, std::size_t position);

}  // namespace kt::text
