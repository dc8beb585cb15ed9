#pragma once

/// @file
/// Which legacy metadata a migration may drop.

#include <optional>
#include <string>
#include <string_view>

namespace ktannot {

/// The words of the --accept option and the migration flags behind them.
class MetadataAcceptance {
public:
    MetadataAcceptance() = delete;

    /// The flags of a comma-separated list of "view-metadata", "known-metadata", "other-metadata" and "all"; nothing
    /// when another word is among them.
    static std::optional<int> parse(std::string_view list);

    /// The word that would have accepted what a migration's log line refuses; empty when the line is about something
    /// else.
    static std::string_view findRemedy(std::string_view logMessage);
};

}  // namespace ktannot
