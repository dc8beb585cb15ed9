#include "tools/ktannot/batch/ThreadedRun.h"

#include "tools/ktannot/batch/DocumentWork.h"

#include <oneapi/tbb/enumerable_thread_specific.h>
#include <oneapi/tbb/global_control.h>
#include <oneapi/tbb/parallel_pipeline.h>
#include <oneapi/tbb/task_arena.h>

#include <memory>
#include <mutex>
#include <vector>

namespace ktannot {

namespace {

/// Stack of the threads that read documents: the deepest tree that is read needs a part of it even in sanitizer builds.
/// Not more than what main threads usually have: one with half of it or less would only wait for the others, spinning.
constexpr std::size_t sThreadStackSize = std::size_t{8} * 1024 * 1024;

}  // namespace

void ThreadedRun::run(const BatchRun& batch) {
    namespace tbb = oneapi::tbb;
    const auto jobs = static_cast<std::size_t>(batch.mJobs);
    const tbb::global_control stackSize(tbb::global_control::thread_stack_size, sThreadStackSize);
    const tbb::global_control parallelism(tbb::global_control::max_allowed_parallelism, jobs);
    tbb::enumerable_thread_specific<std::unique_ptr<DocumentWork>> work(
        [&batch] { return std::make_unique<DocumentWork>(batch.mOptions, batch.mReporter, batch.mNeedsFacts); });

    // The pipeline orders its stages by itself. That everything which passes between threads also passes a mutex shows
    // it to ThreadSanitizer, which cannot look into the pipeline's library, and costs nothing beside a document.
    const std::size_t tokens = 2 * jobs;
    std::size_t next = 0;
    std::mutex inputMutex;
    const auto takeInput = [&](tbb::flow_control& control) -> std::size_t {
        const std::lock_guard lock(inputMutex);
        if (next == batch.mInputs.size() || batch.mIsEnough()) {
            control.stop();
            return next;
        }
        return next++;
    };
    // As turns come in order, the document that had a place before has left when the next one comes.
    std::vector<std::unique_ptr<DocumentReport>> places(tokens);
    std::mutex doneMutex;
    const auto migrate = [&](std::size_t index) {
        auto report = std::make_unique<DocumentReport>(work.local()->run(batch.mInputs[index]));
        const std::lock_guard lock(doneMutex);
        batch.mOnDone(*report);
        places[index % tokens] = std::move(report);
        return index;
    };
    std::mutex turnMutex;
    const auto takeTurn = [&](std::size_t index) {
        std::unique_ptr<DocumentReport> report;
        {
            const std::lock_guard lock(doneMutex);
            report = std::move(places[index % tokens]);
        }
        const std::lock_guard lock(turnMutex);
        batch.mOnTurn(*report);
    };
    tbb::task_arena arena(batch.mJobs);
    arena.execute([&] {
        tbb::parallel_pipeline(tokens,
                               tbb::make_filter<void, std::size_t>(tbb::filter_mode::serial_in_order, takeInput) &
                                   tbb::make_filter<std::size_t, std::size_t>(tbb::filter_mode::parallel, migrate) &
                                   tbb::make_filter<std::size_t, void>(tbb::filter_mode::serial_in_order, takeTurn));
    });
    // What the threads did last is seen by the caller, and by the end of what they worked with.
    const std::scoped_lock lock(inputMutex, doneMutex, turnMutex);
}

}  // namespace ktannot
