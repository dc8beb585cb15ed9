#include "platform/svg/Text.h"

namespace kt::svg {

Text::~Text() = default;

}  // namespace kt::svg
