#include "legacy/ktAnnotationMetaData.h"
#include "legacy/ktAnnotationView.h"
#include "legacy/ktLegacyStatics_p.h"

#include <ios>

// Everything that is constructed at load time stands in this one file, because only objects of one file are constructed
// in a certain order (and destroyed in the reverse one): counter, record of the metadata class, standard streams,
// record of the view class.

namespace ktLegacy {

kt::impl::LibInitCounter impl::sInitCounter("annotationLegacy", true);

const kt::ktRtti ktAnnotationMetaData::TYPE("ktCore.ktAnnotationMetaData", &kt::ktMetadataInterface::TYPE);

namespace {
const std::ios_base::Init sStandardStreams;
}

const kt::ktRtti ktAnnotationView::TYPE("ktCore.ktAnnotationView", &kt::ktObject::TYPE);

}  // namespace ktLegacy
