#pragma once

/// @file
/// What is wrong with the fonts of this machine.

#include <cstdint>
#include <string>

namespace kt::text {

/// Why texts may be set in other fonts than the system means them to be: a fault of the machine, not of the text. A
/// character that no font has is none.
struct FontProblem {
    enum class Kind : std::uint8_t {
        NoConfiguration,  ///< the system's font configuration cannot be read: fonts are taken as they come
        NoFont,           ///< there is no font at all: nothing can be laid out
        CannotOpen,       ///< a font's file cannot be opened or read: another font stands in
        Damaged           ///< a font's file holds no font: another font stands in
    };

    bool operator==(const FontProblem&) const = default;

    Kind mKind = Kind::NoFont;
    std::string mFile;    ///< empty unless the problem is one of a file
    std::string mReason;  ///< why the file cannot be opened, in the system's words
};

}  // namespace kt::text
