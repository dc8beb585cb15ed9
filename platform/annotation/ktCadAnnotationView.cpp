#include "platform/annotation/ktCadAnnotationView.h"

namespace kt {

ktCadAnnotationView::~ktCadAnnotationView() = default;

}  // namespace kt
