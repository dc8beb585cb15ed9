#pragma once

/// @file
/// What the migration of texts keeps from text to text.

#include "migration/ktAnnotationMigration.h"
#include "platform/annotation/TextArea.h"
#include "platform/annotation/TextSegmentToSvgConverter.h"

namespace ktLegacy {

struct ktAnnotationMigration::TextWork {
    kt::text::TextSegmentToSvgConverter mConverter;
    kt::text::TextArea mArea;  ///< the text at work; its memory serves text after text
};

}  // namespace ktLegacy
