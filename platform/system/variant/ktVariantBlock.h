#pragma once

/// @file
/// Storage of variant maps and lists.

#include <cstddef>
#include <cstdint>

namespace kt::impl {

/// Head of the one block in which a map or list keeps its elements; they follow it.
struct alignas(8) ktVariantBlock {
    std::uint32_t mSize;
    std::uint32_t mCapacity;

    template <typename Element>
    Element* elements() noexcept {
        return reinterpret_cast<Element*>(this + 1);
    }
    template <typename Element>
    const Element* elements() const noexcept {
        return reinterpret_cast<const Element*>(this + 1);
    }
};

}  // namespace kt::impl
