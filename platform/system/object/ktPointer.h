#pragma once

/// @file
/// Pointer to a reference-counted object.

#include <concepts>
#include <cstddef>
#include <type_traits>
#include <utility>

namespace kt {

/// Holds one reference to an intrusively counted object (anything with IncrementReferences and DecrementReferences), or
/// nothing. As cheap as a raw pointer to move. Counts are plain integers: an object and the pointers to it belong to
/// one thread at a time.
template <typename T>
class ktPointer {
public:
    using element_type = T;

    constexpr ktPointer() noexcept = default;
    constexpr ktPointer(std::nullptr_t) noexcept {}
    /// Takes a further reference to object; null is allowed.
    ktPointer(T* object) : mObject(object) { acquire(); }
    ktPointer(const ktPointer& other) : mObject(other.mObject) { acquire(); }
    ktPointer(ktPointer&& other) noexcept : mObject(std::exchange(other.mObject, nullptr)) {}
    template <typename U>
    requires std::is_convertible_v<U*, T*> ktPointer(const ktPointer<U>& other) : mObject(other.get()) { acquire(); }
    ~ktPointer() { release(); }

    ktPointer& operator=(const ktPointer& other) {
        ktPointer(other).swap(*this);
        return *this;
    }
    ktPointer& operator=(ktPointer&& other) noexcept {
        ktPointer(std::move(other)).swap(*this);
        return *this;
    }
    ktPointer& operator=(T* object) {
        ktPointer(object).swap(*this);
        return *this;
    }

    void swap(ktPointer& other) noexcept { std::swap(mObject, other.mObject); }
    void reset() noexcept { ktPointer().swap(*this); }

    T* get() const noexcept { return mObject; }
    T& operator*() const { return *mObject; }
    T* operator->() const { return mObject; }
    operator T*() const noexcept { return mObject; }
    explicit operator bool() const noexcept { return mObject != nullptr; }

private:
    void acquire() {
        if (mObject != nullptr) {
            mObject->IncrementReferences();
        }
    }
    void release() {
        if (mObject != nullptr) {
            mObject->DecrementReferences();
        }
    }

    T* mObject = nullptr;
};

/// Pointers are equal when they hold the same object or nothing; they may be pointers to a class and its base.
template <typename T, typename U>
requires std::equality_comparable_with<T*, U*>
bool operator==(const ktPointer<T>& a, const ktPointer<U>& b) noexcept { return a.get() == b.get(); }
template <typename T, typename U>
requires std::equality_comparable_with<T*, U*>
bool operator==(const ktPointer<T>& a, U* b) noexcept { return a.get() == b; }
template <typename T>
bool operator==(const ktPointer<T>& a, std::nullptr_t) noexcept {
    return a.get() == nullptr;
}

}  // namespace kt
