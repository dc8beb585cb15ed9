#include "tools/ktannot/console/Progress.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace ktannot {

namespace {

std::chrono::milliseconds getInterval(Progress::Form form) {
    switch (form) {
        case Progress::Form::Plain:
            return std::chrono::seconds(5);
        case Progress::Form::Json:
            return std::chrono::seconds(1);
        case Progress::Form::None:
        case Progress::Form::Bar:
            break;
    }
    return std::chrono::milliseconds(100);
}

/// "2 h 05 min", "3 min", "12 s".
std::string describeSeconds(double seconds) {
    const long whole = std::lround(seconds);
    if (whole < 100) {
        return std::to_string(whole) + " s";
    }
    const long minutes = (whole + 30) / 60;
    if (minutes < 100) {
        return std::to_string(minutes) + " min";
    }
    const long rest = minutes % 60;
    return std::to_string(minutes / 60) + " h " + (rest < 10 ? "0" : "") + std::to_string(rest) + " min";
}

}  // namespace

Progress::Progress(std::size_t total, Form form) : mTotal(total), mBegun(Clock::now()), mForm(form) {
    if (mForm == Form::Plain || mForm == Form::Json) {
        tell(mBegun);
    }
}

void Progress::advance() {
    ++mDone;
    if (mForm == Form::None) {
        return;
    }
    const Clock::time_point now = Clock::now();
    if (now - mLastTold >= getInterval(mForm)) {
        tell(now);
    }
}

void Progress::clear() {
    if (mIsShown) {
        mIsShown = false;
        mLastTold = {};
        std::fputs("\r\x1b[K", stderr);
        std::fflush(stderr);
    }
}

void Progress::finish() {
    clear();
    if (mForm == Form::Plain || mForm == Form::Json) {
        tell(Clock::now());
    }
}

double Progress::getSecondsLeft(double seconds) const {
    return mDone == 0 ? 0.0 : seconds / static_cast<double>(mDone) * static_cast<double>(mTotal - mDone);
}

void Progress::tell(Clock::time_point now) {
    static constexpr std::size_t sWidth = 30;
    mLastTold = now;
    const double seconds = std::chrono::duration<double>(now - mBegun).count();
    const double left = getSecondsLeft(seconds);
    if (mForm == Form::Json) {
        std::fprintf(stderr, "{\"done\": %zu, \"total\": %zu, \"seconds\": %.1f, \"secondsLeft\": %.1f}\n", mDone,
                     mTotal, seconds, left);
    } else {
        // The first documents say little about the others.
        const bool isLeftKnown = mDone != 0 && mDone != mTotal && seconds >= 1.0;
        const std::string rest = isLeftKnown ? ", " + describeSeconds(left) + " left" : std::string();
        if (mForm == Form::Plain) {
            std::fprintf(stderr, "ktannot: %zu of %zu documents%s\n", mDone, mTotal, rest.c_str());
        } else {
            const std::size_t filled = mTotal == 0 ? sWidth : sWidth * std::min(mDone, mTotal) / mTotal;
            const std::string bar = std::string(filled, '#') + std::string(sWidth - filled, '-');
            std::fprintf(stderr, "\r[%s] %zu of %zu documents%s\x1b[K", bar.c_str(), mDone, mTotal, rest.c_str());
            mIsShown = true;
        }
    }
    std::fflush(stderr);
}

}  // namespace ktannot
