#pragma once

/// @file
/// Fast appending to a string.

#include <array>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

namespace kt::svg {

/// Appends to a string through a chunk that stays in the processor's cache: short pieces are written by pointer,
/// without a call or a capacity check of their own. The string is complete after flush().
class TextBuffer {
public:
    /// Most bytes that one reserve() may ask for.
    static constexpr std::size_t sMaxReserve = 2048;

    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): the chunk is written before it is read
    explicit TextBuffer(std::string& target) : mTarget(&target) {}

    /// Room for size bytes; what was written there is appended by commit(end).
    char* reserve(std::size_t size) {
        if (mChunk.size() - mUsed < size) {
            flush();
        }
        return mChunk.data() + mUsed;
    }
    void commit(const char* end) { mUsed = static_cast<std::size_t>(end - mChunk.data()); }

    void append(std::string_view text) {
        if (text.size() > sMaxReserve) {
            flush();
            mTarget->append(text);
            return;
        }
        char* out = reserve(text.size());
        std::memcpy(out, text.data(), text.size());
        commit(out + text.size());
    }

    std::size_t getSize() const { return mTarget->size() + mUsed; }

    /// Takes back everything after this size.
    void truncate(std::size_t size) {
        if (size >= mTarget->size()) {
            mUsed = size - mTarget->size();
        } else {
            mTarget->resize(size);
            mUsed = 0;
        }
    }

    void flush() {
        mTarget->append(mChunk.data(), mUsed);
        mUsed = 0;
    }

private:
    static constexpr std::size_t sChunkSize = 16384;

    std::string* mTarget;
    std::size_t mUsed = 0;
    std::array<char, sChunkSize> mChunk;
};

/// Copies a literal without its NUL and gives the end.
template <std::size_t N>
char* putLiteral(char* out, const char (&text)[N]) {
    std::memcpy(out, text, N - 1);
    return out + N - 1;
}

inline char* putText(char* out, std::string_view text) {
    std::memcpy(out, text.data(), text.size());
    return out + text.size();
}

}  // namespace kt::svg
