#pragma once

/// @file
/// Values as bytes between processes of one run.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>

namespace ktannot {

/// Puts values behind each other.
class PacketWriter {
public:
    template <typename Value>
    void put(const Value& value) {
        static_assert(std::is_trivially_copyable_v<Value>);
        mBytes.append(reinterpret_cast<const char*>(&value), sizeof(Value));
    }
    void putText(std::string_view text) {
        put(static_cast<std::uint64_t>(text.size()));
        mBytes += text;
    }

    const std::string& getBytes() const { return mBytes; }

private:
    std::string mBytes;
};

/// Takes values in the order in which they were put. Throws std::runtime_error when there are too few bytes.
class PacketReader {
public:
    explicit PacketReader(std::string_view bytes) : mBytes(bytes) {}

    template <typename Value>
    Value take() {
        Value value{};
        std::memcpy(&value, takeBytes(sizeof(Value)).data(), sizeof(Value));
        return value;
    }
    std::string takeText() { return std::string(takeBytes(take<std::uint64_t>())); }
    bool isAtEnd() const { return mBytes.empty(); }

private:
    std::string_view takeBytes(std::uint64_t count) {
        if (count > mBytes.size()) {
            throw std::runtime_error("a packet between processes is torn");
        }
        const std::string_view taken = mBytes.substr(0, count);
        mBytes.remove_prefix(count);
        return taken;
    }

    std::string_view mBytes;
};

}  // namespace ktannot
