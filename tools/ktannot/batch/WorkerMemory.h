#pragma once

/// @file
/// Memory that a run and its worker processes share.

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>

namespace ktannot {

/// What all workers of a run share.
struct WorkerControl {
    std::atomic<std::uint64_t> mNext{0};  ///< the document to take next
    std::atomic<std::uint64_t> mTurn{0};  ///< the document whose turn is next in the order of the inputs
    std::atomic<bool> mIsEnding{false};   ///< no more documents are taken
};

/// What one worker tells while it works, so that its death loses nothing that was done.
struct WorkerSlot {
    static constexpr std::uint64_t sNone = std::numeric_limits<std::uint64_t>::max();

    std::atomic<std::uint64_t> mDocument{sNone};        ///< in hand
    std::atomic<std::int64_t> mStarted{0};              ///< when it was taken: nanoseconds of the steady clock
    std::atomic<std::uint32_t> mLength{0};              ///< bytes of mViews that count
    std::array<char, std::size_t{48} * 1024> mViews{};  ///< the views of the document that are done, as packets

    void begin(std::uint64_t document, std::int64_t now) {
        mLength.store(0);
        mStarted.store(now);
        mDocument.store(document);
    }
    /// Views beyond the space are not told.
    void addView(std::string_view packet) {
        const std::uint32_t length = mLength.load();
        if (packet.size() <= mViews.size() - length) {
            packet.copy(mViews.data() + length, packet.size());
            mLength.store(length + static_cast<std::uint32_t>(packet.size()));
        }
    }
    std::string_view getViews() const { return {mViews.data(), mLength.load()}; }
};

static_assert(std::atomic<std::uint64_t>::is_always_lock_free, "locks would not reach from process to process");

}  // namespace ktannot
