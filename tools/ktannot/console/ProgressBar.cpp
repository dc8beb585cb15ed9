#include "tools/ktannot/console/ProgressBar.h"

#include <cstdio>
#include <string>

namespace ktannot {

void ProgressBar::advance() {
    static constexpr std::chrono::milliseconds sInterval{50};
    ++mDone;
    const auto now = std::chrono::steady_clock::now();
    if (mIsWanted && now - mLastDrawn >= sInterval) {
        mLastDrawn = now;
        mIsShown = true;
        draw();
    }
}

void ProgressBar::clear() {
    if (mIsShown) {
        mIsShown = false;
        mLastDrawn = {};
        std::fputs("\r\x1b[K", stderr);
        std::fflush(stderr);
    }
}

void ProgressBar::draw() const {
    static constexpr std::size_t sWidth = 40;
    const std::size_t filled = mTotal == 0 ? sWidth : sWidth * mDone / mTotal;
    const std::string bar = std::string(filled, '#') + std::string(sWidth - filled, '-');
    std::fprintf(stderr, "\r[%s] %zu of %zu documents\x1b[K", bar.c_str(), mDone, mTotal);
    std::fflush(stderr);
}

}  // namespace ktannot
