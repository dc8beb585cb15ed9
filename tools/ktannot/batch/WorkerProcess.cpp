#include "tools/ktannot/batch/WorkerProcess.h"

#include "tools/ktannot/batch/DocumentWork.h"
#include "tools/ktannot/batch/MemoryLimit.h"
#include "tools/ktannot/report/Packet.h"

#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <exception>
#include <limits>
#include <string>
#include <thread>

namespace ktannot {

namespace {

/// How many documents workers may be ahead of the slowest one: their reports wait in memory.
constexpr std::uint64_t sMaxAhead = 1024;
/// Start of a document that has not begun: no limit counts.
constexpr std::int64_t sWaiting = std::numeric_limits<std::int64_t>::max();
/// The deepest tree that is read needs a part of it, even in sanitizer builds.
constexpr rlim_t sStackSize = rlim_t{8} * 1024 * 1024;

void setUp(int parent) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) {
        _exit(0);
    }
    // The parent decides when to end.
    std::signal(SIGINT, SIG_IGN);
    std::signal(SIGTERM, SIG_IGN);
    // What the parent tells of the document says more than a line of this process could.
    std::signal(SIGBUS, [](int) { _exit(WorkerProcess::sFileLost); });
    std::set_terminate([] { _exit(7); });
    struct rlimit limit {};
    if (getrlimit(RLIMIT_STACK, &limit) == 0 && limit.rlim_cur < sStackSize) {
        limit.rlim_cur = std::min(sStackSize, limit.rlim_max);
        setrlimit(RLIMIT_STACK, &limit);
    }
}

void writeAll(int output, const char* data, std::size_t size) {
    while (size != 0) {
        const ssize_t count = write(output, data, size);
        if (count < 0 && errno != EINTR) {
            _exit(0);
        }
        data += std::max<ssize_t>(count, 0);
        size -= static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    }
}

void send(int output, std::uint64_t document, const DocumentReport& report) {
    const std::string bytes = report.toBytes();
    const WorkerProcess::Header header{bytes.size(), document};
    std::string packet(reinterpret_cast<const char*>(&header), sizeof(header));
    packet += bytes;
    writeAll(output, packet.data(), packet.size());
}

std::int64_t getNow() { return std::chrono::steady_clock::now().time_since_epoch() / std::chrono::nanoseconds(1); }

}  // namespace

void WorkerProcess::work(const BatchRun& batch, WorkerControl& control, WorkerSlot& slot, int parent, int output) {
    setUp(parent);
    MemoryLimit memory(batch.mOptions.mMemoryLimit);
    if (batch.mSandbox != Sandbox::Mode::Off && !Sandbox::enter(batch.mPlaces) &&
        batch.mSandbox == Sandbox::Mode::Require) {
        _exit(sNoSandbox);
    }
    DocumentWork work(batch.mOptions, batch.mReporter, batch.mNeedsFacts);
    const auto onView = [&slot](std::size_t number, const ViewResult& view) {
        PacketWriter packet;
        packet.put(number);
        packet.put(view.mState);
        packet.putText(view.mName);
        packet.putText(view.mFile);
        packet.putText(view.mReason);
        slot.addView(packet.getBytes());
    };
    while (!control.mIsEnding.load()) {
        const std::uint64_t document = control.mNext.fetch_add(1);
        if (document >= batch.mInputs.size()) {
            break;
        }
        slot.begin(document, sWaiting);
        while (document > control.mTurn.load() + sMaxAhead && !control.mIsEnding.load()) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        if (control.mIsEnding.load()) {
            slot.mDocument.store(WorkerSlot::sNone);
            break;
        }
        const Input input = batch.mInputs[document];
        slot.mStarted.store(getNow());
        memory.begin(input.mPath);
        const DocumentReport report = work.run(input, onView);
        memory.end();
        send(output, document, report);
        slot.mDocument.store(WorkerSlot::sNone);
    }
    _exit(0);
}

}  // namespace ktannot
