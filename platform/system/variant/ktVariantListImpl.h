#pragma once

/// @file
/// List of variants.

#include "platform/system/variant/ktVariant.h"
#include "platform/system/variant/ktVariantBlock.h"

#include <cstddef>
#include <initializer_list>
#include <utility>

namespace kt {

/// A sequence of variants in one block. An empty list is one null pointer. Any change may move the elements.
class KT_SYSTEM_API ktVariant::ktVariantListImpl {
public:
    using value_type = ktVariant;
    using iterator = ktVariant*;
    using const_iterator = const ktVariant*;

    ktVariantListImpl() noexcept = default;
    ktVariantListImpl(std::initializer_list<ktVariant> elements);
    ktVariantListImpl(const ktVariantListImpl& other);
    ktVariantListImpl(ktVariantListImpl&& other) noexcept : mBlock(std::exchange(other.mBlock, nullptr)) {}
    ktVariantListImpl& operator=(const ktVariantListImpl& other) { return *this = ktVariantListImpl(other); }
    ktVariantListImpl& operator=(ktVariantListImpl&& other) noexcept {
        ktVariantListImpl moved(std::move(other));
        swap(moved);
        return *this;
    }
    ~ktVariantListImpl() {
        if (mBlock != nullptr) {
            destroyBlock(mBlock);
        }
    }

    void swap(ktVariantListImpl& other) noexcept { std::swap(mBlock, other.mBlock); }

    std::size_t size() const noexcept { return mBlock == nullptr ? 0 : mBlock->mSize; }
    bool empty() const noexcept { return size() == 0; }
    iterator begin() noexcept { return mBlock == nullptr ? nullptr : mBlock->elements<ktVariant>(); }
    iterator end() noexcept { return mBlock == nullptr ? nullptr : mBlock->elements<ktVariant>() + mBlock->mSize; }
    const_iterator begin() const noexcept { return mBlock == nullptr ? nullptr : mBlock->elements<ktVariant>(); }
    const_iterator end() const noexcept {
        return mBlock == nullptr ? nullptr : mBlock->elements<ktVariant>() + mBlock->mSize;
    }

    /// The element; an index beyond the end is a programming error.
    ktVariant& operator[](std::size_t index) noexcept { return mBlock->elements<ktVariant>()[index]; }
    const ktVariant& operator[](std::size_t index) const noexcept { return mBlock->elements<ktVariant>()[index]; }
    /// Throws std::out_of_range when there is no such element.
    ktVariant& at(std::size_t index);
    const ktVariant& at(std::size_t index) const;
    ktVariant& front() noexcept { return *begin(); }
    const ktVariant& front() const noexcept { return *begin(); }
    ktVariant& back() noexcept { return *(end() - 1); }
    const ktVariant& back() const noexcept { return *(end() - 1); }

    void push_back(ktVariant value);
    template <typename... Arguments>
    ktVariant& emplace_back(Arguments&&... arguments) {
        push_back(ktVariant(std::forward<Arguments>(arguments)...));
        return back();
    }
    void reserve(std::size_t capacity);
    void clear() noexcept { ktVariantListImpl().swap(*this); }

    bool operator==(const ktVariantListImpl& other) const;

private:
    friend class ktVariant;
    friend class impl::ktVariantStorage;
    friend class impl::ktVariantBuilder;

    static void destroyBlock(impl::ktVariantBlock* block) noexcept;

    impl::ktVariantBlock* mBlock = nullptr;
};

static_assert(sizeof(ktVariant::ktVariantListImpl) == sizeof(void*));

}  // namespace kt
