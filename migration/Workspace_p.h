#pragma once

/// @file
/// What a migration keeps from annotation to annotation.

#include "migration/FailureLog_p.h"
#include "migration/ktAnnotationMigration.h"
#include "platform/annotation/TextArea.h"
#include "platform/annotation/TextSegmentToSvgConverter.h"

#include <vector>

namespace ktLegacy {

struct ktAnnotationMigration::Workspace {
    kt::text::TextSegmentToSvgConverter mTextConverter;
    kt::text::TextArea mText;                   ///< the text at work; its memory serves text after text
    migration::FailureLog mLog;                 ///< of the call at work
    std::vector<unsigned int> mFailedSubAnnot;  ///< where the call at work failed
    bool mReplacesMissingPictures = false;
};

}  // namespace ktLegacy
