#include "platform/svg/Image.h"

namespace kt::svg {

Image::~Image() = default;

}  // namespace kt::svg
