#pragma once

/// @file
/// Progress on a terminal.

#include <chrono>
#include <cstddef>

namespace ktannot {

/// A bar on standard error that grows with the work done. Draws nothing when it is not wanted. Used by one thread.
class ProgressBar {
public:
    /// @param total     how much work there is.
    /// @param isWanted  false: never draw; the caller knows whether standard error is a terminal.
    ProgressBar(std::size_t total, bool isWanted) : mTotal(total), mIsWanted(isWanted) {}
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;
    ~ProgressBar() { clear(); }

    /// Counts one more piece of work as done and draws the bar when the last drawing is a while ago.
    void advance();
    /// Wipes the bar, so that other lines can be written.
    void clear();

private:
    void draw() const;

    std::size_t mTotal;
    std::size_t mDone = 0;
    std::chrono::steady_clock::time_point mLastDrawn{};
    bool mIsWanted;
    bool mIsShown = false;
};

}  // namespace ktannot
