#pragma once

/// @file
/// Vector that needs no heap for a few elements.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <memory>
#include <new>
#include <span>
#include <stdexcept>
#include <type_traits>
#include <utility>

namespace kt::svg {

// NOLINTBEGIN(cppcoreguidelines-pro-type-member-init): the room is filled element by element

/// The part of std::vector that items of drawings need, with room for inlineCapacity elements inside the object: most
/// groups have a few children, most paths a few points. Pointers to elements stay valid until it grows beyond its
/// capacity, is moved or is destroyed. It holds fewer than 2^32 elements; one more throws std::bad_alloc.
template <typename T, std::uint32_t inlineCapacity>
class SmallVector {
    static_assert(std::is_nothrow_move_constructible_v<T>);

public:
    using value_type = T;
    using size_type = std::size_t;
    using iterator = T*;
    using const_iterator = const T*;
    using reference = T&;
    using const_reference = const T&;

    SmallVector() noexcept = default;
    SmallVector(std::initializer_list<T> elements) { append(elements); }
    SmallVector(const SmallVector& other) { append(other); }
    SmallVector(SmallVector&& other) noexcept { take(other); }
    SmallVector& operator=(const SmallVector& other) {
        if (this != &other) {
            SmallVector copy(other);
            release();
            take(copy);
        }
        return *this;
    }
    SmallVector& operator=(SmallVector&& other) noexcept {
        if (this != &other) {
            release();
            take(other);
        }
        return *this;
    }
    ~SmallVector() { release(); }

    T* data() { return mElements; }
    const T* data() const { return mElements; }
    std::size_t size() const { return mSize; }
    std::size_t capacity() const { return mCapacity; }
    bool empty() const { return mSize == 0; }

    iterator begin() { return mElements; }
    iterator end() { return mElements + mSize; }
    const_iterator begin() const { return mElements; }
    const_iterator end() const { return mElements + mSize; }
    T& operator[](std::size_t index) { return mElements[index]; }
    const T& operator[](std::size_t index) const { return mElements[index]; }
    /// Throws std::out_of_range where there is no element.
    const T& at(std::size_t index) const {
        if (index >= mSize) {
            throw std::out_of_range("SmallVector::at");
        }
        return mElements[index];
    }
    T& front() { return mElements[0]; }
    const T& front() const { return mElements[0]; }
    T& back() { return mElements[mSize - 1]; }
    const T& back() const { return mElements[mSize - 1]; }

    void reserve(std::size_t count) {
        if (count > mCapacity) {
            moveTo(count);
        }
    }
    void push_back(T element) {
        if (mSize == mCapacity) {
            moveTo(std::size_t{2} * mCapacity);
        }
        std::construct_at(mElements + mSize, std::move(element));
        ++mSize;
    }
    /// The elements must not be the vector's own.
    void append(std::span<const T> elements) {
        if (elements.size() > mCapacity - mSize) {
            moveTo(std::max(std::size_t{2} * mCapacity, mSize + elements.size()));
        }
        std::uninitialized_copy(elements.begin(), elements.end(), end());
        mSize += static_cast<std::uint32_t>(elements.size());
    }
    /// Puts the element in front of position, which is an iterator of this vector.
    iterator insert(const_iterator position, T element) {
        const auto index = position - begin();
        push_back(std::move(element));
        std::rotate(begin() + index, end() - 1, end());
        return begin() + index;
    }
    void pop_back() {
        --mSize;
        std::destroy_at(end());
    }
    void clear() {
        std::destroy(begin(), end());
        mSize = 0;
    }

    friend bool operator==(const SmallVector& a, std::span<const T> b) { return std::ranges::equal(a, b); }

private:
    T* getRoom() { return reinterpret_cast<T*>(mRoom); }
    bool isInline() const { return mElements == reinterpret_cast<const T*>(mRoom); }

    void moveTo(std::size_t capacity) {
        if (capacity > std::numeric_limits<std::uint32_t>::max()) {
            throw std::bad_alloc();
        }
        T* const elements = std::allocator<T>().allocate(capacity);
        std::uninitialized_move(begin(), end(), elements);
        const std::uint32_t size = mSize;
        release();
        mElements = elements;
        mSize = size;
        mCapacity = static_cast<std::uint32_t>(capacity);
    }
    /// Takes over the other's elements into an empty vector; the other one is empty then.
    void take(SmallVector& other) noexcept {
        if (other.isInline()) {
            std::uninitialized_move(other.begin(), other.end(), mElements);
            mSize = other.mSize;
            other.clear();
        } else {
            mElements = std::exchange(other.mElements, other.getRoom());
            mSize = std::exchange(other.mSize, 0);
            mCapacity = std::exchange(other.mCapacity, inlineCapacity);
        }
    }
    /// Leaves an empty vector without memory of its own.
    void release() noexcept {
        clear();
        if (!isInline()) {
            std::allocator<T>().deallocate(mElements, mCapacity);
            mElements = getRoom();
            mCapacity = inlineCapacity;
        }
    }

    T* mElements = getRoom();
    std::uint32_t mSize = 0;
    std::uint32_t mCapacity = inlineCapacity;
    // NOLINTNEXTLINE(modernize-avoid-c-arrays,cppcoreguidelines-avoid-c-arrays): it holds elements, not bytes
    alignas(T) std::byte mRoom[inlineCapacity * sizeof(T)];
};

// NOLINTEND(cppcoreguidelines-pro-type-member-init)

}  // namespace kt::svg
