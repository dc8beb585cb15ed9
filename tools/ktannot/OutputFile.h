#pragma once

/// @file
/// Whole files or none.

#include <string>
#include <string_view>

namespace ktannot {

/// Writes a file so that its final name only ever stands for the whole content: through a temporary file beside it and
/// a rename. A temporary file that was not completed is removed.
class OutputFile {
public:
    enum class Existing { Keep, Replace };

    /// The failure of write() when the final name is taken and must be kept.
    static constexpr std::string_view sExistsAlready = "exists already";

    /// Creates the folder of a file with all folders above it.
    /// @return the reason of a failure, empty on success.
    static std::string createFolders(const std::string& path);

    /// Writes the content under the path.
    /// @param existing  Keep: a file that exists under the final name is left alone, and that is a failure.
    /// @return the reason of a failure, empty on success.
    static std::string write(const std::string& path, std::string_view content, Existing existing);
};

}  // namespace ktannot
