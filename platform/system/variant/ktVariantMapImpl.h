#pragma once

/// @file
/// Map of variants.

#include "platform/system/variant/ktVariant.h"
#include "platform/system/variant/ktVariantBlock.h"
#include "platform/system/variant/ktVariantKey.h"

#include <concepts>
#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

namespace kt {

/// A map from texts to variants: entries in one block, ascending by the bytes of their keys. An empty map is one null
/// pointer. Looking up takes logarithmic time; inserting in the middle moves the entries behind, so large maps are
/// built with append() and finish(). Any change may move the entries.
class KT_SYSTEM_API ktVariant::ktVariantMapImpl {
public:
    struct Entry {
        const ktVariantKey first;
        ktVariant second;
    };
    using value_type = Entry;
    using iterator = Entry*;
    using const_iterator = const Entry*;

    ktVariantMapImpl() noexcept = default;
    /// Of equal keys the last one counts.
    ktVariantMapImpl(std::initializer_list<std::pair<std::string_view, ktVariant>> entries);
    ktVariantMapImpl(const ktVariantMapImpl& other);
    ktVariantMapImpl(ktVariantMapImpl&& other) noexcept : mBlock(std::exchange(other.mBlock, nullptr)) {}
    ktVariantMapImpl& operator=(const ktVariantMapImpl& other) { return *this = ktVariantMapImpl(other); }
    ktVariantMapImpl& operator=(ktVariantMapImpl&& other) noexcept {
        ktVariantMapImpl moved(std::move(other));
        swap(moved);
        return *this;
    }
    ~ktVariantMapImpl() {
        if (mBlock != nullptr) {
            destroyBlock(mBlock);
        }
    }

    void swap(ktVariantMapImpl& other) noexcept { std::swap(mBlock, other.mBlock); }

    std::size_t size() const noexcept { return mBlock == nullptr ? 0 : mBlock->mSize; }
    bool empty() const noexcept { return size() == 0; }
    iterator begin() noexcept { return mBlock == nullptr ? nullptr : mBlock->elements<Entry>(); }
    iterator end() noexcept { return mBlock == nullptr ? nullptr : mBlock->elements<Entry>() + mBlock->mSize; }
    const_iterator begin() const noexcept { return mBlock == nullptr ? nullptr : mBlock->elements<Entry>(); }
    const_iterator end() const noexcept {
        return mBlock == nullptr ? nullptr : mBlock->elements<Entry>() + mBlock->mSize;
    }
    const_iterator cbegin() const noexcept { return begin(); }
    const_iterator cend() const noexcept { return end(); }

    iterator find(std::string_view key) noexcept { return begin() + findIndex(key); }
    const_iterator find(std::string_view key) const noexcept { return begin() + findIndex(key); }
    bool contains(std::string_view key) const noexcept { return findIndex(key) != size(); }
    std::size_t count(std::string_view key) const noexcept { return contains(key) ? 1 : 0; }
    /// Throws std::out_of_range when there is no such key.
    ktVariant& at(std::string_view key);
    const ktVariant& at(std::string_view key) const;
    /// The value of the key; an undefined one is inserted when there is none.
    ktVariant& operator[](std::string_view key) { return emplace(key, ktVariant()).first->second; }

    /// The value of the key converted to T, or fallback when there is no such key.
    template <typename T>
    T value(std::string_view key, const T& fallback) const {
        const const_iterator found = find(key);
        return found == end() ? fallback : convert<T>(found->second);
    }

    /// Sets the value of the key; true when the key is new.
    std::pair<iterator, bool> insert_or_assign(std::string_view key, ktVariant value);
    /// Inserts unless there is such a key; true when the key is new.
    std::pair<iterator, bool> emplace(std::string_view key, ktVariant value);
    std::pair<iterator, bool> insert(const std::pair<std::string_view, ktVariant>& entry) {
        return emplace(entry.first, entry.second);
    }
    /// Number of entries removed.
    std::size_t erase(std::string_view key) noexcept;
    iterator erase(const_iterator position) noexcept;
    void clear() noexcept { ktVariantMapImpl().swap(*this); }
    void reserve(std::size_t capacity);

    /// Appends an entry whatever its key. Until finish() the map must only be appended to or destroyed.
    void append(std::string_view key, ktVariant value);
    /// Puts appended entries in order; of equal keys the last one counts.
    void finish();

    /// Equal keys with equal values.
    bool operator==(const ktVariantMapImpl& other) const;

private:
    friend class ktVariant;
    friend class impl::ktVariantStorage;
    friend class impl::ktVariantBuilder;

    template <typename T>
    static T convert(const ktVariant& value) {
        if constexpr (std::is_same_v<T, std::string>) {
            return value.isString() ? std::string(value.getStringView()) : value.toString();
        } else if constexpr (std::is_same_v<T, bool>) {
            return value.toBool();
        } else if constexpr (std::is_same_v<T, std::int64_t>) {
            return value.toInteger();
        } else {
            static_assert(std::is_floating_point_v<T>, "texts, bool, std::int64_t, float and double can be asked for");
            return static_cast<T>(value.toReal());
        }
    }

    static void destroyBlock(impl::ktVariantBlock* block) noexcept;
    /// Index of the key's entry, size() when there is none.
    std::size_t findIndex(std::string_view key) const noexcept {
        return key.size() <= ktVariantKey::sMaxInlineText ? findShortKey(ktVariantKey(key)) : findLongKey(key);
    }
    std::size_t findShortKey(const ktVariantKey& key) const noexcept;
    std::size_t findLongKey(std::string_view key) const noexcept;
    /// Index of the first entry whose key is not less.
    std::size_t lowerBound(const ktVariantKey& key) const noexcept;
    void growFor(std::size_t size);
    iterator insertAt(std::size_t index, ktVariantKey&& key, ktVariant&& value);

    impl::ktVariantBlock* mBlock = nullptr;
};

static_assert(sizeof(ktVariant::ktVariantMapImpl) == sizeof(void*));

}  // namespace kt
