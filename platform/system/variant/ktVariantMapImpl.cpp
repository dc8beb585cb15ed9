#include "platform/system/variant/ktVariantMapImpl.h"

#include "platform/system/variant/ktVariantBuilder_p.h"
#include "platform/system/variant/ktVariantStorage_p.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace kt {

using MapImpl = ktVariant::ktVariantMapImpl;
using impl::ktVariantStorage;

MapImpl::ktVariantMapImpl(std::initializer_list<std::pair<std::string_view, ktVariant>> entries) {
    ktVariantMapImpl map;
    map.reserve(entries.size());
    for (const auto& [key, value] : entries) {
        map.append(key, value);
    }
    map.finish();
    swap(map);
}

MapImpl::ktVariantMapImpl(const ktVariantMapImpl& other)
    : mBlock(ktVariantStorage::copyTree(Kind::Map, other.mBlock)) {}

void MapImpl::destroyBlock(impl::ktVariantBlock* block) noexcept { ktVariantStorage::destroyTree(Kind::Map, block); }

std::size_t MapImpl::lowerBound(const ktVariantKey& key) const noexcept {
    const auto isLess = [](const Entry& entry, const ktVariantKey& wanted) { return entry.first < wanted; };
    return static_cast<std::size_t>(std::lower_bound(begin(), end(), key, isLess) - begin());
}

std::size_t MapImpl::findShortKey(const ktVariantKey& key) const noexcept {
    // Comparing whole keys for equality is so cheap that small maps are searched from front to back.
    constexpr std::size_t sSmallSize = 16;
    const std::size_t count = size();
    if (count > sSmallSize) {
        const std::size_t index = lowerBound(key);
        return index != count && begin()[index].first == key ? index : count;
    }
    std::size_t index = 0;
    while (index != count && begin()[index].first != key) {
        ++index;
    }
    return index;
}

std::size_t MapImpl::findLongKey(std::string_view key) const noexcept {
    const auto isLess = [](const Entry& entry, std::string_view wanted) { return entry.first < wanted; };
    const const_iterator found = std::lower_bound(begin(), end(), key, isLess);
    return found != end() && found->first == key ? static_cast<std::size_t>(found - begin()) : size();
}

ktVariant& MapImpl::at(std::string_view key) { return const_cast<ktVariant&>(std::as_const(*this).at(key)); }

const ktVariant& MapImpl::at(std::string_view key) const {
    const const_iterator found = find(key);
    if (found == end()) {
        throw std::out_of_range("no such key in the variant map");
    }
    return found->second;
}

std::pair<MapImpl::iterator, bool> MapImpl::insert_or_assign(std::string_view key, ktVariant value) {
    ktVariantKey ownKey(key);
    const std::size_t index = lowerBound(ownKey);
    if (index != size() && begin()[index].first == ownKey) {
        begin()[index].second = std::move(value);
        return {begin() + index, false};
    }
    return {insertAt(index, std::move(ownKey), std::move(value)), true};
}

std::pair<MapImpl::iterator, bool> MapImpl::emplace(std::string_view key, ktVariant value) {
    ktVariantKey ownKey(key);
    const std::size_t index = lowerBound(ownKey);
    if (index != size() && begin()[index].first == ownKey) {
        return {begin() + index, false};
    }
    return {insertAt(index, std::move(ownKey), std::move(value)), true};
}

void MapImpl::growFor(std::size_t size) {
    if (mBlock == nullptr || size > mBlock->mCapacity) {
        mBlock = ktVariantStorage::growBlock(Kind::Map, mBlock, size);
    }
}

MapImpl::iterator MapImpl::insertAt(std::size_t index, ktVariantKey&& key, ktVariant&& value) {
    growFor(size() + 1);
    Entry* place = begin() + index;
    std::memmove(static_cast<void*>(place + 1), static_cast<const void*>(place), (size() - index) * sizeof(Entry));
    new (place) Entry{std::move(key), std::move(value)};
    ++mBlock->mSize;
    return place;
}

std::size_t MapImpl::erase(std::string_view key) noexcept {
    const const_iterator found = find(key);
    if (found == end()) {
        return 0;
    }
    erase(found);
    return 1;
}

MapImpl::iterator MapImpl::erase(const_iterator position) noexcept {
    Entry* place = begin() + (position - begin());
    std::destroy_at(place);
    std::memmove(static_cast<void*>(place), static_cast<const void*>(place + 1),
                 static_cast<std::size_t>(end() - place - 1) * sizeof(Entry));
    --mBlock->mSize;
    return place;
}

void MapImpl::reserve(std::size_t capacity) {
    if (capacity != 0) {
        growFor(capacity);
    }
}

void MapImpl::append(std::string_view key, ktVariant value) {
    ktVariantKey ownKey(key);
    growFor(size() + 1);
    new (end()) Entry{std::move(ownKey), std::move(value)};
    ++mBlock->mSize;
}

void MapImpl::finish() {
    if (mBlock != nullptr) {
        mBlock->mSize = static_cast<std::uint32_t>(impl::ktVariantBuilder::sortEntries(begin(), mBlock->mSize));
    }
}

bool MapImpl::operator==(const ktVariantMapImpl& other) const {
    return ktVariantStorage::equalTrees(Kind::Map, mBlock, other.mBlock);
}

}  // namespace kt
