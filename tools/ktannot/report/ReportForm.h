#pragma once

/// @file
/// Forms of the report for programs.

namespace ktannot {

enum class ReportForm {
    None,
    Whole,  ///< one JSON object for the whole batch
    Lines,  ///< a line of JSON for each document
};

}  // namespace ktannot
