#pragma once

/// @file
/// Which fonts this process uses.

#include "platform/annotation/ktAnnotationExport.h"

#include <string>

namespace kt {

/// The font that stands for a family and style.
struct ktFontChoice {
    std::string mFamily;        ///< empty when there is no font at all
    std::string mFile;          ///< path of its file
    unsigned mIndex = 0;        ///< face in the file
    bool mIsOfFamily = false;   ///< false: the family is not installed, this one is used instead
    bool mIsSynthetic = false;  ///< the font lacks the style: its glyphs are thickened or slanted
};

/// Finds the font for the family's own characters; those that it lacks may come from others.
/// @param style  bits of text::TextProperties::mStyle.
KT_ANNOTATION_API ktFontChoice findFont(const std::string& family, unsigned style);

/// Lets the process take fonts from one folder, and those below it, alone: the same fonts give the same drawings on
/// every machine. Neither the system's fonts nor its rules are used; Arial, Helvetica, Times New Roman and Courier New
/// stand for the Liberation families, and for families that are not there stands a sans-serif one. Not to be called
/// while texts are laid out; converters that are there already keep their fonts.
/// @return false when the folder holds no fonts; nothing is changed then.
KT_ANNOTATION_API bool restrictFontsTo(const std::string& folder);

}  // namespace kt
