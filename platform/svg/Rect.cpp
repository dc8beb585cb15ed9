#include "platform/svg/Rect.h"

namespace kt::svg {

Rect::~Rect() = default;

}  // namespace kt::svg
