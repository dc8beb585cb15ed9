#pragma once

/// @file
/// Files of results.

#include "tools/ktannot/batch/MigrationOptions.h"

#include <span>
#include <string>
#include <string_view>

namespace ktannot {

/// Writes drawings and dumps so that nothing is harmed: whole or not at all, what is there already only as the options
/// say, and never a document.
class ResultFile {
public:
    ResultFile() = delete;

    /// @param content  in pieces.
    /// @return the reason of a failure, empty on success.
    static std::string write(const std::string& path, std::span<const std::string_view> content,
                             const MigrationOptions& options);
};

}  // namespace ktannot
