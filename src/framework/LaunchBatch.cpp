#include "framework/LaunchBatch.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace kinsort {

namespace {

constexpr std::chrono::milliseconds kFarewell{2000};

// The modes that go through the desktop on the calling thread.
struct DesktopMode {
    int32_t mode;
    bool waitsForShell;
    int32_t pauseMs;
};
constexpr DesktopMode kDesktopModes[] = {
    {kLaunchAtOnce, false, 0},
    {kLaunchHandedOver, true, 0},
    {kLaunchPause200, true, 200},
    {kLaunchPause500, true, 500},
};

bool IsCancelled(const ProcessContext& context) {
    return context.isCancelled && context.isCancelled();
}

void LaunchThroughDesktop(ProcessContext& context, const LaunchPause& pause, const DesktopMode& mode,
                          const LaunchBatch& batch) {
    for (const LaunchItem& item : batch.items) {
        if (IsCancelled(context)) return;
        ShellLaunchFromThread(context, item.program, item.arguments, item.startFolder, mode.waitsForShell,
                              item.showState, batch.elevated != 0);
        if (mode.pauseMs > 0) pause(mode.pauseMs);
    }
}

void LaunchEachWaited(ProcessContext& context, const LaunchBatch& batch) {
    for (const LaunchItem& item : batch.items) {
        if (IsCancelled(context)) return;
        if (RunAndWait(context, item.program, item.arguments, item.startFolder, item.showState, item.timeoutMs) == 0) {
            return;
        }
    }
}

}  // namespace

// A thread and what it works on, which is its own: `context` is a copy that asks nobody whether to stop.
struct LaunchWorkers::Worker {
    Worker(const ProcessContext& theContext, std::vector<LaunchItem> theItems)
        : context(theContext), items(std::move(theItems)) {
        context.isCancelled = nullptr;
    }
    ~Worker() {
        stopping = true;
        if (thread.joinable()) thread.join();
    }
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    void Begin() {
        try {
            thread = std::thread([this] { Run(); });
        } catch (const std::system_error&) {
            Run();  // the system has no thread left for us
        }
    }
    void Run() {
        for (const LaunchItem& item : items) {
            if (stopping) break;
            // A thread of its own has no main window that could own what is opened.
            ShellLaunch(context, kNoWindow,
                        {.file = item.program,
                         .arguments = item.arguments,
                         .startFolder = item.startFolder,
                         .showState = item.showState});
        }
        const std::lock_guard lock(mutex);
        hasEnded = true;
        ended.notify_all();
    }
    bool WaitUntil(std::chrono::steady_clock::time_point moment) {
        std::unique_lock lock(mutex);
        return ended.wait_until(lock, moment, [this] { return hasEnded; });
    }

    ProcessContext context;
    const std::vector<LaunchItem> items;
    std::atomic<bool> stopping = false;
    std::mutex mutex;
    std::condition_variable ended;
    bool hasEnded = false;  // under mutex
    std::thread thread;
};

LaunchWorkers::LaunchWorkers() = default;

LaunchWorkers::~LaunchWorkers() {
    const auto moment = std::chrono::steady_clock::now() + kFarewell;
    for (const std::unique_ptr<Worker>& worker : workers_)
        worker->WaitUntil(moment);
}

void LaunchWorkers::Launch(const ProcessContext& context, std::vector<LaunchItem> items) {
    std::erase_if(workers_, [](const auto& worker) { return worker->WaitUntil({}); });
    workers_.push_back(std::make_unique<Worker>(context, std::move(items)));
    workers_.back()->Begin();
}

void AddLaunchItem(LaunchBatch& batch, int32_t mode, std::u16string_view program, std::u16string_view arguments,
                   std::u16string_view startFolder, uint16_t showState, int32_t timeoutMs) {
    batch.mode = mode;
    batch.items.push_back(
        {std::u16string(program), std::u16string(arguments), std::u16string(startFolder), showState, timeoutMs});
}

void RunLaunchBatch(ProcessContext& context, const LaunchPause& pause, LaunchWorkers& workers, LaunchBatch& batch) {
    for (const DesktopMode& mode : kDesktopModes) {
        if (mode.mode == batch.mode) LaunchThroughDesktop(context, pause, mode, batch);
    }
    if (batch.mode == kLaunchEachWaited) LaunchEachWaited(context, batch);
    if (batch.mode == kLaunchOnWorker && !batch.items.empty()) workers.Launch(context, std::move(batch.items));
    batch.items.clear();
}

}  // namespace kinsort
