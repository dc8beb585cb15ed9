#include "tools/ktannot/batch/IsolatedRun.h"

#include "tools/ktannot/EnvironmentError.h"
#include "tools/ktannot/batch/DocumentWork.h"
#include "tools/ktannot/batch/StopSignal.h"
#include "tools/ktannot/batch/WorkerMemory.h"
#include "tools/ktannot/batch/WorkerProcess.h"
#include "tools/ktannot/files/FileDescriptor.h"
#include "tools/ktannot/files/OutputFolder.h"
#include "tools/ktannot/report/Packet.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <map>
#include <new>
#include <span>
#include <string>
#include <thread>
#include <vector>

namespace ktannot {

namespace {

using Clock = std::chrono::steady_clock;

/// Time that workers have to end the document in hand when an end is asked for.
constexpr std::chrono::milliseconds sGrace{80};
/// Time in which reports gather.
constexpr std::chrono::microseconds sCollecting{500};
/// How often limits and requests to stop are looked at.
constexpr int sWatchMilliseconds = 20;
/// Workers that may die in a row without a document in hand before this is given up.
constexpr int sMaxIdleDeaths = 5;

std::string describeSeconds(std::chrono::milliseconds time) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.10g", static_cast<double>(time.count()) / 1000.0);
    return text.data();
}

/// Memory that is the same in all processes, filled with one object after the other.
template <typename Value>
class SharedMemory {
public:
    explicit SharedMemory(std::size_t count) : mCount(count) {
        void* memory = mmap(nullptr, getSize(), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) {
            throw std::bad_alloc();
        }
        mValues = static_cast<Value*>(memory);
        for (std::size_t index = 0; index < count; ++index) {
            new (mValues + index) Value();
        }
    }
    SharedMemory(const SharedMemory&) = delete;
    SharedMemory& operator=(const SharedMemory&) = delete;
    ~SharedMemory() { munmap(mValues, getSize()); }

    Value& operator[](std::size_t index) { return mValues[index]; }

private:
    std::size_t getSize() const { return mCount * sizeof(Value); }

    std::size_t mCount;
    Value* mValues = nullptr;
};

struct Worker {
    bool isAlive() const { return mProcess > 0; }

    pid_t mProcess = 0;
    FileDescriptor mInput;  ///< where its packets come from
    std::string mBytes;     ///< of packets that are not complete
    bool mIsKilledForTime = false;
    bool mIsKilledToStop = false;
};

/// One run.
class Run {
public:
    explicit Run(const BatchRun& batch)
        : mBatch(batch),
          mControl(1),
          mSlots(static_cast<std::size_t>(batch.mJobs)),
          mWorkers(static_cast<std::size_t>(batch.mJobs)) {}
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;
    ~Run() {
        for (const Worker& worker : mWorkers) {
            if (worker.isAlive()) {
                kill(worker.mProcess, SIGKILL);
                waitpid(worker.mProcess, nullptr, 0);
            }
        }
    }

    bool run() {
        for (std::size_t index = 0; index < mWorkers.size() && start(index); ++index) {
        }
        if (!isAnyAlive()) {
            return false;
        }
        while (isAnyAlive()) {
            watch();
            receive();
        }
        // What came in behind a document that was stopped.
        for (const auto& [index, report] : mWaiting) {
            mBatch.mOnTurn(report);
        }
        return true;
    }

private:
    WorkerControl& getControl() { return mControl[0]; }
    bool isAnyAlive() const {
        return std::any_of(mWorkers.begin(), mWorkers.end(), [](const Worker& worker) { return worker.isAlive(); });
    }

    bool start(std::size_t index) {
        std::array<int, 2> ends{};
        if (pipe2(ends.data(), O_CLOEXEC) != 0) {
            return false;
        }
        FileDescriptor input(ends[0]);
        const FileDescriptor output(ends[1]);
        const pid_t parent = getpid();
        const pid_t process = fork();
        if (process == 0) {
            WorkerProcess::work(mBatch, getControl(), mSlots[index], parent, output.get());
        }
        if (process < 0) {
            return false;
        }
        fcntl(input.get(), F_SETFL, O_NONBLOCK);
        mWorkers[index] = Worker();
        mWorkers[index].mProcess = process;
        mWorkers[index].mInput = std::move(input);
        return true;
    }

    /// Ends what takes too long.
    void watch() {
        const int signal = StopSignal::getPending();
        if (signal != 0 || mBatch.mIsEnough()) {
            getControl().mIsEnding.store(true);
        }
        const Clock::time_point now = Clock::now();
        if (signal != 0 && mStopped == Clock::time_point()) {
            mStopped = now;
        }
        for (std::size_t index = 0; index < mWorkers.size(); ++index) {
            Worker& worker = mWorkers[index];
            const WorkerSlot& slot = mSlots[index];
            if (!worker.isAlive() || slot.mDocument.load() == WorkerSlot::sNone) {
                continue;
            }
            const Clock::time_point started{std::chrono::nanoseconds(slot.mStarted.load())};
            if (signal != 0 && now - mStopped > sGrace) {
                worker.mIsKilledToStop = true;
                kill(worker.mProcess, SIGKILL);
            } else if (mBatch.mTimeLimit.count() > 0 && now - started > mBatch.mTimeLimit) {
                worker.mIsKilledForTime = true;
                kill(worker.mProcess, SIGKILL);
            }
        }
    }

    void receive() {
        std::vector<pollfd> polled;
        std::vector<std::size_t> indices;
        for (std::size_t index = 0; index < mWorkers.size(); ++index) {
            if (mWorkers[index].isAlive()) {
                polled.push_back({mWorkers[index].mInput.get(), POLLIN, 0});
                indices.push_back(index);
            }
        }
        if (poll(polled.data(), polled.size(), sWatchMilliseconds) <= 0) {
            return;
        }
        for (std::size_t index = 0; index < polled.size(); ++index) {
            if (polled[index].revents != 0) {
                receiveFrom(indices[index]);
            }
        }
        // Small documents are done faster than it pays to wake up for: a pipe holds many of their reports.
        if (getControl().mNext.load() < mBatch.mInputs.size()) {
            std::this_thread::sleep_for(sCollecting);
        }
    }

    void receiveFrom(std::size_t index) {
        static constexpr std::size_t sPieceSize = std::size_t{64} * 1024;
        Worker& worker = mWorkers[index];
        const std::size_t filled = worker.mBytes.size();
        worker.mBytes.resize(filled + sPieceSize);
        const ssize_t count = read(worker.mInput.get(), worker.mBytes.data() + filled, sPieceSize);
        worker.mBytes.resize(filled + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        takePackets(worker);
        if (count == 0 || (count < 0 && errno != EAGAIN && errno != EINTR)) {
            bury(index);
        }
    }

    void takePackets(Worker& worker) {
        std::size_t taken = 0;
        WorkerProcess::Header header;
        while (worker.mBytes.size() - taken >= sizeof(header)) {
            std::memcpy(&header, worker.mBytes.data() + taken, sizeof(header));
            if (worker.mBytes.size() - taken - sizeof(header) < header.mLength) {
                break;
            }
            taken += sizeof(header);
            finish(header.mDocument,
                   DocumentReport::fromBytes(std::string_view(worker.mBytes).substr(taken, header.mLength)));
            taken += header.mLength;
            mIdleDeaths = 0;
        }
        worker.mBytes.erase(0, taken);
    }

    void finish(std::uint64_t document, DocumentReport report) {
        mBatch.mOnDone(report);
        mWaiting.emplace(document, std::move(report));
        std::atomic<std::uint64_t>& turn = getControl().mTurn;
        for (auto first = mWaiting.begin(); first != mWaiting.end() && first->first == turn.load();
             first = mWaiting.begin()) {
            mBatch.mOnTurn(first->second);
            mWaiting.erase(first);
            turn.fetch_add(1);
        }
    }

    /// A worker that ended, at its end or before.
    void bury(std::size_t index) {
        Worker& worker = mWorkers[index];
        WorkerSlot& slot = mSlots[index];
        int status = 0;
        waitpid(worker.mProcess, &status, 0);
        const std::uint64_t document = slot.mDocument.exchange(WorkerSlot::sNone);
        // It may have died between sending the report and saying so.
        const bool isInHand =
            document != WorkerSlot::sNone && document >= getControl().mTurn.load() && mWaiting.count(document) == 0;
        if (isInHand) {
            const Input input = mBatch.mInputs[document];
            OutputFolder::removeLeftOvers(mBatch.mOptions.getFolder(input.mDocumentName), worker.mProcess);
            finish(document, mBatch.mReporter.report(describeDeath(input, worker, slot, status)));
        }
        const bool isEarly = !WIFEXITED(status) || WEXITSTATUS(status) != 0;
        worker = Worker();
        if (WIFEXITED(status) && WEXITSTATUS(status) == WorkerProcess::sNoSandbox) {
            throw EnvironmentError("the worker processes could not be shut in; --sandbox off does without that");
        }
        if (isEarly && !isInHand && ++mIdleDeaths > sMaxIdleDeaths) {
            throw EnvironmentError("the worker processes end before they begin; --isolate off does without them");
        }
        if (isEarly && !getControl().mIsEnding.load() && getControl().mNext.load() < mBatch.mInputs.size() &&
            !start(index) && !isAnyAlive()) {
            throw EnvironmentError("no further worker process can be made");
        }
    }

    DocumentResult describeDeath(const Input& input, const Worker& worker, const WorkerSlot& slot, int status) const {
        std::string reason = "the process that worked on it ended before its time";
        ExitCode outcome = ExitCode::InternalError;
        if (worker.mIsKilledForTime) {
            reason = "a limit was reached: " + describeSeconds(mBatch.mTimeLimit) +
                     " seconds for one document; --time-limit allows more";
            outcome = ExitCode::LimitReached;
        } else if (worker.mIsKilledToStop) {
            reason.clear();
            outcome = ExitCode::AllWell;
        } else if (WIFEXITED(status) && WEXITSTATUS(status) == WorkerProcess::sFileLost) {
            reason = "the file was cut short, or its disk failed, while it was being read";
            outcome = ExitCode::EnvironmentFailed;
        } else if (WIFSIGNALED(status)) {
            const int signal = WTERMSIG(status);
            reason = "the process that worked on it was ended by signal " + std::to_string(signal) + " (" +
                     strsignal(signal) + "); please report it with the output of 'ktannot version' and the document";
        }
        DocumentResult result = DocumentWork::makeFailedResult(input, outcome, reason);
        addViews(slot.getViews(), result);
        return result;
    }

    /// The views that were done before the end.
    static void addViews(std::string_view packets, DocumentResult& result) {
        PacketReader packet(packets);
        while (!packet.isAtEnd()) {
            const auto number = packet.take<std::size_t>();
            while (result.mViews.size() < number) {
                result.mViews.emplace_back().mState = ViewResult::State::Unwanted;
            }
            ViewResult& view = result.mViews.back();
            view.mState = packet.take<ViewResult::State>();
            view.mName = packet.takeText();
            view.mFile = packet.takeText();
            view.mReason = packet.takeText();
        }
    }

    const BatchRun& mBatch;
    SharedMemory<WorkerControl> mControl;
    SharedMemory<WorkerSlot> mSlots;
    std::vector<Worker> mWorkers;
    std::map<std::uint64_t, DocumentReport> mWaiting;  ///< for their turn
    int mIdleDeaths = 0;
    Clock::time_point mStopped{};
};

}  // namespace

bool IsolatedRun::run(const BatchRun& batch) { return Run(batch).run(); }

}  // namespace ktannot
