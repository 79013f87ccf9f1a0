#include "script/commands/DropHandOver.h"

#include "framework/FileDropList.h"
#include "framework/MessageNumbers.h"
#include "framework/Messages.h"
#include "framework/Processes.h"
#include "script/ScriptRun.h"
#include "script/commands/ShellTarget.h"

namespace kinsort {

namespace {

constexpr int32_t kReadyMs = 10'000;
constexpr int32_t kIdleSliceMs = 50;  // how late the wait notices that the run is cancelled
constexpr int64_t kWindowNs = 10'000'000'000;
constexpr int32_t kLookEveryMs = 50;

// False when there is nothing to go on with; the user has been told why.
bool WaitUntilReady(ScriptRun& run, Process& process) {
    for (int32_t left = kReadyMs; left > 0; left -= kIdleSliceMs) {
        const Result<bool> idle = process.WaitForIdle(kIdleSliceMs);
        run.processes.lastError = idle.status();
        if (!idle.ok()) {
            ShowLastError(run.processes);
            return false;
        }
        if (*idle) return true;
        if (run.isCancelled()) return false;
    }
    run.Tell(run.services.messages.GetMessageText(kMsgNotReady));
    return false;
}

// kNoWindow when none appears in time; the user has been told.
WindowHandle WaitForWindow(ScriptRun& run, const Process& process) {
    Clock& clock = run.services.clock;
    const int64_t begin = clock.SteadyNanoseconds();
    while (!run.isCancelled()) {
        const WindowHandle window = run.services.windows.FindTopLevelOfProcess(process.Id());
        if (window != kNoWindow) return window;
        if (clock.SteadyNanoseconds() - begin >= kWindowNs) {
            run.Tell(run.services.messages.GetMessageText(kMsgNoWindow));
            break;
        }
        run.Pause(kLookEveryMs);
    }
    return kNoWindow;
}

}  // namespace

void HandOverByDrop(ScriptRun& run, std::u16string_view target) {
    const Result<std::unique_ptr<Process>> process =
        StartCommandLine(run.processes, target, FolderOf(target), run.options.showWindow);
    if (!process.ok()) {
        run.Tell(run.services.messages.GetMessageText(kMsgCannotStart).append(u"\n").append(target));
        return;
    }
    if (!WaitUntilReady(run, **process)) return;
    const WindowHandle window = WaitForWindow(run, **process);
    if (window == kNoWindow) return;
    (void)run.services.windows.PostDrop(window, BuildFileDropList(run.selectedItems));
    run.services.ui.BringToForeground(window);
}

}  // namespace kinsort
