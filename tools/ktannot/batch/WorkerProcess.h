#pragma once

/// @file
/// A process that works on documents.

#include "tools/ktannot/batch/BatchRun.h"
#include "tools/ktannot/batch/WorkerMemory.h"

#include <cstdint>

namespace ktannot {

/// The work of one worker process: takes document after document until none is left, and sends each report as a packet:
/// its length, the document's index and the report's bytes.
class WorkerProcess {
public:
    /// Exit code of a worker whose document's file went away beneath it.
    static constexpr int sFileLost = 6;
    /// Exit code of a worker that could not be shut in as it had to be.
    static constexpr int sNoSandbox = 8;

    struct Header {
        std::uint64_t mLength = 0;    ///< of the report
        std::uint64_t mDocument = 0;  ///< index in the inputs
    };

    WorkerProcess() = delete;

    /// @param parent  process that the worker does not outlive.
    /// @param output  descriptor for the packets.
    [[noreturn]] static void work(const BatchRun& batch, WorkerControl& control, WorkerSlot& slot, int parent,
                                  int output);
};

}  // namespace ktannot
