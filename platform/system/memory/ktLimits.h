#pragma once

/// @file
/// Every limit that protects a reader from its input, on one page.

#include <cstddef>
#include <cstdint>

namespace kt {

/// Deepest sub-annotation level that is read; the top annotation is at level 1. Real documents stay below 30; the limit
/// keeps the recursion of the readers within a small stack.
constexpr int sMaxAnnotationDepth = 512;

/// Deepest level of a variant map in a binary document; the map itself is level 1.
constexpr int sMaxVariantMapDepth = 512;

/// Memory that a document may make its reader allocate: room for any small document, and more than the in-memory form
/// of anything that the bytes of a large one can spell out. Without it a 35-byte record that claims 268 million leaders
/// would take 4 GB.
constexpr std::uint64_t sMemoryBudgetBase = 64ULL * 1024 * 1024;
constexpr std::uint64_t sMemoryBudgetPerByte = 64;

/// The memory budget of a binary document of that many bytes.
constexpr std::uint64_t getMemoryBudget(std::uint64_t documentSize) {
    return sMemoryBudgetBase + sMemoryBudgetPerByte * documentSize;
}

/// Deepest nesting of JSON arrays and objects. Reading, copying and destroying variants needs no stack per level, so
/// this only bounds the memory of hostile nesting; 100,000 levels of children (200,000 of JSON) still load.
constexpr std::size_t sMaxJsonDepth = 1'000'000;

}  // namespace kt
