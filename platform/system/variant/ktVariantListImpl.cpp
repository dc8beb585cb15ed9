#include "platform/system/variant/ktVariantListImpl.h"

#include "platform/system/variant/ktVariantStorage_p.h"

#include <stdexcept>

namespace kt {

using ListImpl = ktVariant::ktVariantListImpl;
using impl::ktVariantStorage;

ListImpl::ktVariantListImpl(std::initializer_list<ktVariant> elements) {
    ktVariantListImpl list;
    list.reserve(elements.size());
    for (const ktVariant& element : elements) {
        list.push_back(element);
    }
    swap(list);
}

ListImpl::ktVariantListImpl(const ktVariantListImpl& other)
    : mBlock(ktVariantStorage::copyTree(Kind::List, other.mBlock)) {}

void ListImpl::destroyBlock(impl::ktVariantBlock* block) noexcept { ktVariantStorage::destroyTree(Kind::List, block); }

ktVariant& ListImpl::at(std::size_t index) { return const_cast<ktVariant&>(std::as_const(*this).at(index)); }

const ktVariant& ListImpl::at(std::size_t index) const {
    if (index >= size()) {
        throw std::out_of_range("no such element in the variant list");
    }
    return (*this)[index];
}

void ListImpl::push_back(ktVariant value) {
    if (mBlock == nullptr || mBlock->mSize == mBlock->mCapacity) {
        mBlock = ktVariantStorage::growBlock(Kind::List, mBlock, size() + 1);
    }
    new (mBlock->elements<ktVariant>() + mBlock->mSize) ktVariant(std::move(value));
    ++mBlock->mSize;
}

void ListImpl::reserve(std::size_t capacity) {
    if (capacity > (mBlock == nullptr ? 0 : mBlock->mCapacity)) {
        mBlock = ktVariantStorage::growBlock(Kind::List, mBlock, capacity);
    }
}

bool ListImpl::operator==(const ktVariantListImpl& other) const {
    return ktVariantStorage::equalTrees(Kind::List, mBlock, other.mBlock);
}

}  // namespace kt
