#pragma once

/// @file
/// Many documents in processes of their own.

#include "tools/ktannot/batch/BatchRun.h"

namespace ktannot {

/// Works on the documents of a run in worker processes, each of which is used for many documents. A worker that dies,
/// or takes too long, costs the document in its hand; another takes its place. A request to stop is answered within a
/// fraction of a second, whatever the workers are doing. The calls are made by the calling thread.
class IsolatedRun {
public:
    IsolatedRun() = delete;

    /// False, with nothing done, when this system makes no processes.
    static bool run(const BatchRun& batch);
};

}  // namespace ktannot
