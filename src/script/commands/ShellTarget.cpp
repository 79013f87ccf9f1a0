// "shell" and "run": a folder for the host, or a program or document to be started.
#include "script/commands/ShellTarget.h"

#include "framework/LaunchBatch.h"
#include "framework/Paths.h"
#include "script/ItemTokens.h"
#include "script/ScriptLine.h"
#include "script/ScriptRun.h"
#include "script/commands/DropHandOver.h"
#include "script/commands/HostMessages.h"
#include "script/commands/Statements.h"

namespace kinsort {

namespace {

enum OpenMode : int32_t {
    kOpenAutomatic = 0,
    kOpenLaunch = 1,  // so does every number that is not here
    kOpenInTab = 2,
    kOpenInNewTab = 3,
    kOpenInOtherPane = 4,
    kOpenNothing = 5,
    kOpenNothingEither = 6,
};

constexpr uint32_t FolderCode(int32_t openMode) {
    return static_cast<uint32_t>(100 * (openMode - kOpenInTab + 1));
}

// A target that names nothing counts as a folder, too.
bool CountsAsFolder(ScriptRun& run, std::u16string_view target) {
    return (GetPathAttributes(run.services.files, target) & kAttributeDirectory) != 0;
}

LineOutcome SendFolder(ScriptRun& run, std::u16string_view target, bool isFolder) {
    const std::u16string folder = isFolder ? std::u16string(target) : FolderOf(target);
    if (folder.empty()) return LineOutcome::kNextLine;
    SendToHost(run, folder, FolderCode(run.options.openMode));
    return LineOutcome::kNextLine;
}

// One start, or one for each item, with the items' parts filled into the parameters.
LineOutcome Launch(ScriptRun& run, const StatementCall& call, std::u16string_view target) {
    const CommandOptions& options = run.options;
    const std::vector<std::u16string>& items = run.selectedItems;
    const std::u16string folder = WorkingFolderOf(run, target);
    LaunchBatch batch;
    batch.elevated = options.runAs ? 1 : 0;
    const auto add = [&](std::u16string_view parameters) {
        AddLaunchItem(batch, options.bootMode, target, parameters, folder, options.showWindow, options.timeoutMs);
    };

    const bool isSilent = options.shiftSilentMode && run.services.ui.IsKeyDown(ModifierKey::kShift);
    const std::u16string parameters = isSilent ? std::u16string() : options.commandLineOption;
    if (options.multiCommandMode || items.empty() || !HoldsItemToken(parameters)) {
        const std::optional<std::u16string> filled =
            FillInAllItems(parameters, items, run.services.system, kMaxExpandedLength);
        if (!filled) return run.FailTooLong(call.line.statement);
        add(*filled);
    } else {
        for (const std::u16string& item : items)
            add(FillInItem(parameters, item, run.services.system));
    }
    RunLaunchBatch(
        run.processes, [&run](int32_t ms) { run.Pause(ms); }, run.services.launchWorkers, batch);
    run.Pause(options.runWaitMs);
    return LineOutcome::kNextLine;
}

}  // namespace

std::u16string FolderOf(std::u16string_view path) {
    const size_t separator = path.find_last_of(u"\\/");
    if (separator == path.npos) return {};
    return RemoveTrailingSeparatorKeepRoot(path.substr(0, separator + 1));
}

std::u16string WorkingFolderOf(ScriptRun& run, std::u16string_view target) {
    const std::u16string& option = run.options.bootDir;
    if (option.empty()) return run.scope.currentFolder;
    return option == u"1" ? FolderOf(GetFullPath(run.services.files, target)) : option;
}

LineOutcome RunShell(ScriptRun& run, const StatementCall& call) {
    if (call.value.empty()) return LineOutcome::kNextLine;
    const bool isFolder = CountsAsFolder(run, call.value);
    // Once decided, it stays so for the rest of the run.
    if (run.options.openMode == kOpenAutomatic) run.options.openMode = isFolder ? kOpenInNewTab : kOpenLaunch;
    switch (run.options.openMode) {
        case kOpenInTab:
        case kOpenInNewTab:
        case kOpenInOtherPane:
            return SendFolder(run, call.value, isFolder);
        case kOpenNothing:
        case kOpenNothingEither:
            return LineOutcome::kNextLine;
        default:
            break;
    }
    if (run.options.sendInfoMode == 0 || run.selectedItems.empty()) return Launch(run, call, call.value);
    HandOverByDrop(run, call.value);
    run.Pause(run.options.runWaitMs);
    return LineOutcome::kNextLine;
}

}  // namespace kinsort
