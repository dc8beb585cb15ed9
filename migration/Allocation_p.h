#pragma once

/// @file
/// How the migration allocates what it makes.

#include "platform/system/memory/ktBlockPool.h"

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

namespace ktLegacy::migration {

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
