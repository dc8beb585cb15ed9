#pragma once

/// @file
/// Counted initialisation of libraries.

#include "platform/system/ktSystemExport.h"

#include <mutex>

namespace kt::impl {

/// Counts the users of a library. Safe to use from several threads; the work done between two counts is the library's
/// own to serialise.
class KT_SYSTEM_API LibInitCounter {
public:
    /// @param name             the library's name, for debug lines; not copied.
    /// @param reportUnbalanced write a debug line about surplus decrements, and about users left at the end.
    LibInitCounter(const char* name, bool reportUnbalanced);
    LibInitCounter(const LibInitCounter&) = delete;
    LibInitCounter& operator=(const LibInitCounter&) = delete;
    ~LibInitCounter();

    /// True only for the call that takes the count from 0 to 1.
    bool incrementInitCounter();
    /// True only for the call that takes the count from 1 to 0. A surplus call does nothing.
    bool decrementInitCounter();

    int getCount() const;

private:
    const char* mName;
    mutable std::mutex mMutex;
    int mCount = 0;
    bool mReportUnbalanced;
};

}  // namespace kt::impl
