#pragma once

/// @file
/// Values from the bytes of an input, as long as there are some; then zeros.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

namespace ktFuzz {

class Bytes {
public:
    Bytes(const std::uint8_t* data, std::size_t size) : mRest(reinterpret_cast<const char*>(data), size) {}

    bool isEmpty() const { return mRest.empty(); }

    template <typename T>
    T take() {
        T value{};
        const std::size_t size = std::min(sizeof(T), mRest.size());
        std::memcpy(&value, mRest.data(), size);
        mRest.remove_prefix(size);
        return value;
    }

    /// A length byte, then the text.
    std::string takeText() {
        const std::size_t size = std::min<std::size_t>(take<std::uint8_t>(), mRest.size());
        std::string text(mRest.substr(0, size));
        mRest.remove_prefix(size);
        return text;
    }

    std::string_view takeRest() { return std::exchange(mRest, {}); }

private:
    std::string_view mRest;
};

}  // namespace ktFuzz
