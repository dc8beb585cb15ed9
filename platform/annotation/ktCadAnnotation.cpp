#include "platform/annotation/ktCadAnnotation.h"

namespace kt {

ktCadAnnotation::~ktCadAnnotation() = default;

}  // namespace kt
