#pragma once

/// @file
/// What the sources of the migration share.

#include "platform/system/log/ktLogObject.h"
#include "platform/system/memory/ktBlockPool.h"
#include "platform/wm4/Wm4Vector3.h"

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ktLegacy::migration {

/// Drawing units of one em, the unit of legacy sizes.
inline constexpr float sUnitsPerEm = 3.175F;

/// Paint of items without fill or outline.
inline constexpr const char* sNoPaint = "none";
inline constexpr const char* sBlackPaint = "#000000";

/// The colour as SVG writes it: "#" and two upper-case hexadecimal digits each for red, green and blue.
std::string colorToSvgString(const Wm4::Vector3<unsigned char>& color);

/// Begins a line of the log at the type of all the migration's messages; it is written at the end of the statement.
kt::ktLogObject logFailure();

/// Makes an item of a drawing. Items are many, are made together and die together, so they come from the block pool.
template <typename Item, typename... Arguments>
std::shared_ptr<Item> makeItem(Arguments&&... arguments) {
    return std::allocate_shared<Item>(kt::ktPoolAllocator<Item>(), std::forward<Arguments>(arguments)...);
}

/// Makes room for further elements. Unlike a plain reserve it keeps the growth geometric over many calls.
template <typename Element>
void reserveMore(std::vector<Element>& elements, std::size_t count) {
    const std::size_t needed = elements.size() + count;
    if (needed > elements.capacity()) {
        elements.reserve(needed > 2 * elements.capacity() ? needed : 2 * elements.capacity());
    }
}

}  // namespace ktLegacy::migration
