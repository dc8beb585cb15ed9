#pragma once

/// @file
/// Many documents at the same time.

#include "tools/ktannot/batch/InputSet.h"
#include "tools/ktannot/batch/MigrationOptions.h"
#include "tools/ktannot/batch/Sandbox.h"
#include "tools/ktannot/report/DocumentReport.h"
#include "tools/ktannot/report/DocumentReporter.h"

#include <chrono>
#include <cstddef>
#include <functional>

namespace ktannot {

/// What a run over many documents needs to know. What it points to must outlive the run.
struct BatchRun {
    const InputSet& mInputs;
    const MigrationOptions& mOptions;
    DocumentReporter mReporter;
    bool mNeedsFacts = false;  ///< size, time and hash of each document
    int mJobs = 1;
    std::chrono::milliseconds mTimeLimit{0};  ///< for one document; 0: none

    Sandbox::Mode mSandbox = Sandbox::Mode::Auto;  ///< of worker processes
    Sandbox::Places mPlaces = {};                  ///< what they may touch

    /// Called as soon as a document is done, before its turn in the order of the inputs.
    std::function<void(const DocumentReport&)> mOnDone = {};
    /// Called in the order of the inputs.
    std::function<void(const DocumentReport&)> mOnTurn = {};
    /// Asked now and then: whether no more documents are wanted.
    std::function<bool()> mIsEnough = {};
};

}  // namespace ktannot
