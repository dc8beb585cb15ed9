#include "tools/ktannot/batch/ThreadedRun.h"

#include "tools/ktannot/batch/DocumentWork.h"

#include <oneapi/tbb/enumerable_thread_specific.h>
#include <oneapi/tbb/global_control.h>
#include <oneapi/tbb/parallel_pipeline.h>
#include <oneapi/tbb/task_arena.h>

#include <memory>
#include <mutex>

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

    std::size_t next = 0;
    const auto takeInput = [&](tbb::flow_control& control) -> std::size_t {
        if (next == batch.mInputs.size() || batch.mIsEnough()) {
            control.stop();
            return next;
        }
        return next++;
    };
    using Report = std::shared_ptr<DocumentReport>;
    std::mutex doneMutex;
    const auto migrate = [&](std::size_t index) {
        Report report = std::make_shared<DocumentReport>(work.local()->run(batch.mInputs[index]));
        const std::lock_guard lock(doneMutex);
        batch.mOnDone(*report);
        return report;
    };
    tbb::task_arena arena(batch.mJobs);
    arena.execute([&] {
        tbb::parallel_pipeline(
            2 * jobs, tbb::make_filter<void, std::size_t>(tbb::filter_mode::serial_in_order, takeInput) &
                          tbb::make_filter<std::size_t, Report>(tbb::filter_mode::parallel, migrate) &
                          tbb::make_filter<Report, void>(tbb::filter_mode::serial_in_order,
                                                         [&](const Report& report) { batch.mOnTurn(*report); }));
    });
}

}  // namespace ktannot
