#include "framework/LaunchBatch.h"

#include <utility>

namespace kinsort {

namespace {

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

// What the thread works on is its own. It asks nobody but its owner whether to stop, and has no main window that what
// is opened could belong to.
void LaunchWorkers::Launch(const ProcessContext& context, std::vector<LaunchItem> items) {
    ProcessContext own = context;
    own.isCancelled = nullptr;
    auto launchAll = [own, items = std::move(items)](const std::function<bool()>& isStopped) mutable {
        for (const LaunchItem& item : items) {
            if (isStopped()) return;
            ShellLaunch(own, kNoWindow,
                        {.file = item.program,
                         .arguments = item.arguments,
                         .startFolder = item.startFolder,
                         .showState = item.showState});
        }
    };
    const auto work = [launchAll](const WorkerThreads::Link& link) mutable {
        launchAll([&link] { return link.IsStopped(); });
    };
    if (!threads_.Start(work)) launchAll([] { return false; });  // the system has no thread left for us
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
