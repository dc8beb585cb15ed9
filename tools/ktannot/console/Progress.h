#pragma once

/// @file
/// Progress of a batch.

#include <chrono>
#include <cstddef>
#include <string>

namespace ktannot {

/// Tells on standard error how far the work is and how long it will take. Used by one thread.
class Progress {
public:
    enum class Form {
        None,
        Bar,    ///< one line of a terminal that changes
        Plain,  ///< a line now and then, for logs
        Json,   ///< the same for programs
    };

    /// @param total  how much work there is.
    Progress(std::size_t total, Form form);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() { clear(); }

    /// Counts one more piece of work as done and tells of it when the last time is a while ago.
    void advance();
    /// Wipes the bar, so that other lines can be written.
    void clear();
    /// Tells the end, in the forms that have lines.
    void finish();

private:
    using Clock = std::chrono::steady_clock;

    void tell(Clock::time_point now);
    double getSecondsLeft(double seconds) const;

    std::size_t mTotal;
    std::size_t mDone = 0;
    Clock::time_point mBegun;
    Clock::time_point mLastTold{};
    Form mForm;
    bool mIsShown = false;
};

}  // namespace ktannot
