#pragma once

/// @file
/// Many documents in threads.

#include "tools/ktannot/batch/BatchRun.h"

namespace ktannot {

/// Works on the documents of a run in threads of this process. Only a few reports exist at any time, so that memory
/// does not grow with the number of documents. The calls go to one thread at a time.
class ThreadedRun {
public:
    ThreadedRun() = delete;

    static void run(const BatchRun& batch);
};

}  // namespace ktannot
