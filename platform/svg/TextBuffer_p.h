#pragma once

/// @file
/// Fast appending to a growing text.

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kt::svg {

/// A text that grows at its end: short pieces are written by pointer, without a call or a capacity check of their own.
/// It lies in blocks, so that nothing is ever moved or held twice, however long it gets.
class TextBuffer {
public:
    /// Most bytes that one reserve() may ask for.
    static constexpr std::size_t sMaxReserve = 2048;

    TextBuffer() = default;
    /// @param size  bytes that lie in one block.
    explicit TextBuffer(std::size_t size) { addBlock(size); }

    /// Room for size bytes; what was written there is appended by commit(end).
    char* reserve(std::size_t size) {
        if (static_cast<std::size_t>(mEnd - mNext) < size) {
            addBlock(sBlockSize);
        }
        return mNext;
    }
    void commit(char* end) { mNext = end; }

    void append(std::string_view text) {
        while (static_cast<std::size_t>(mEnd - mNext) < text.size()) {
            const auto room = static_cast<std::size_t>(mEnd - mNext);
            mNext = std::copy_n(text.data(), room, mNext);
            text.remove_prefix(room);
            addBlock(sBlockSize);
        }
        mNext = std::copy_n(text.data(), text.size(), mNext);
    }
    /// A literal, without its NUL: of a known size, so that it is copied without a call.
    template <std::size_t N>
    void append(const char (&text)[N]) {
        static_assert(N <= sMaxReserve);
        char* out = reserve(N - 1);
        std::memcpy(out, text, N - 1);
        mNext = out + N - 1;
    }

    std::size_t getSize() const { return mBlocks.empty() ? 0 : mBlocks.back().mStart + getUsed(); }

    /// Takes back everything after this size.
    void truncate(std::size_t size) {
        while (!mBlocks.empty() && size < mBlocks.back().mStart) {
            mBlocks.pop_back();
            mEnd = mBlocks.back().mBytes.get() + mBlocks.back().mSize;
        }
        if (!mBlocks.empty()) {
            mNext = mBlocks.back().mBytes.get() + (size - mBlocks.back().mStart);
        }
    }

    /// The text in pieces; they are valid until it changes.
    void appendPieces(std::vector<std::string_view>& pieces) const {
        for (std::size_t index = 0; index < mBlocks.size(); ++index) {
            const std::size_t end = index + 1 < mBlocks.size() ? mBlocks[index + 1].mStart : getSize();
            pieces.emplace_back(mBlocks[index].mBytes.get(), end - mBlocks[index].mStart);
        }
    }

    /// The text as a whole.
    std::string makeText() const {
        std::vector<std::string_view> pieces;
        appendPieces(pieces);
        std::string text;
        text.reserve(getSize());
        for (const std::string_view piece : pieces) {
            text += piece;
        }
        return text;
    }

private:
    static constexpr std::size_t sBlockSize = 65536;

    struct Block {
        std::unique_ptr<char[]> mBytes;
        std::size_t mSize;
        std::size_t mStart;  ///< of its text in the whole
    };

    std::size_t getUsed() const { return static_cast<std::size_t>(mNext - mBlocks.back().mBytes.get()); }

    void addBlock(std::size_t size) {
        const std::size_t start = getSize();
        // Not zeroed: it is written before it is read.
        mBlocks.push_back({std::unique_ptr<char[]>(new char[size]), size, start});
        mNext = mBlocks.back().mBytes.get();
        mEnd = mNext + size;
    }

    std::vector<Block> mBlocks;
    char* mNext = nullptr;
    char* mEnd = nullptr;
};

/// Copies a literal without its NUL and gives the end.
template <std::size_t N>
char* putLiteral(char* out, const char (&text)[N]) {
    std::memcpy(out, text, N - 1);
    return out + N - 1;
}

inline char* putText(char* out, std::string_view text) {
    return std::copy(text.begin(), text.end(), out);  // an empty text may have no bytes to point at
}

}  // namespace kt::svg
