#pragma once

/// @file
/// Text on its way out.

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace ktannot {

/// Collects text; one that has a file descriptor writes it out in large pieces, so that any amount of text takes little
/// memory. The first failure of the descriptor is kept and everything after it is dropped. Used by one thread.
class TextOutput {
public:
    /// Keeps everything in memory.
    TextOutput() = default;
    /// Writes to the descriptor, which stays the caller's.
    explicit TextOutput(int descriptor) : mDescriptor(descriptor) {}
    TextOutput(const TextOutput&) = delete;
    TextOutput& operator=(const TextOutput&) = delete;
    /// Does not flush: failures must not get lost.
    ~TextOutput() = default;

    void write(std::string_view text) {
        mText.append(text);
        drainWhenLarge();
    }
    void write(char character) {
        mText.push_back(character);
        drainWhenLarge();
    }
    /// Writes what is collected to the descriptor. False when that or an earlier write failed.
    bool flush();

    /// The collected text that is not written out yet: all of it for an output without descriptor.
    const std::string& getText() const { return mText; }
    std::string takeText() { return std::exchange(mText, {}); }
    /// The errno value of the first failure, 0 when there was none.
    int getError() const { return mError; }

private:
    static constexpr std::size_t sPieceSize = std::size_t{64} * 1024;

    void drainWhenLarge() {
        if (mText.size() >= sPieceSize && mDescriptor >= 0) {
            flush();
        }
    }

    std::string mText;
    int mDescriptor = -1;
    int mError = 0;
};

}  // namespace ktannot
