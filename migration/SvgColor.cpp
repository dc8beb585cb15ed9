#include "migration/SvgColor_p.h"

#include <cstddef>

namespace ktLegacy::migration {

std::string colorToSvgString(const Wm4::Vector3<unsigned char>& color) {
    constexpr const char* digits = "0123456789ABCDEF";
    std::string text(7, '#');
    for (int component = 0; component < 3; ++component) {
        const auto position = 1 + 2 * static_cast<std::size_t>(component);
        text[position] = digits[color[component] >> 4];
        text[position + 1] = digits[color[component] & 0x0F];
    }
    return text;
}

}  // namespace ktLegacy::migration
