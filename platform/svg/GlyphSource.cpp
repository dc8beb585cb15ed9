#include "platform/svg/GlyphSource.h"

namespace kt::svg {

GlyphSource::~GlyphSource() = default;

}  // namespace kt::svg
