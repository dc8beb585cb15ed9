// Compiled for the compiler's dump of the classes only.

#include "legacy/annotation/CountAnnotationFunctor.h"
#include "legacy/ktAnnotationMetaData.h"
#include "legacy/ktAnnotationRaster.h"
#include "legacy/ktAnnotationText.h"
#include "legacy/ktAnnotationView.h"
