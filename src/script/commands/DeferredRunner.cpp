// "exrun", and what becomes of it at the end of the run.
#include <algorithm>

#include "framework/LaunchBatch.h"
#include "framework/Paths.h"
#include "framework/VelFolders.h"
#include "script/DeferredRun.h"
#include "script/ItemTokens.h"
#include "script/ScriptLine.h"
#include "script/ScriptRun.h"
#include "script/commands/ShellTarget.h"
#include "script/commands/Statements.h"
#include "text/AsciiCase.h"
#include "text/Split.h"
#include "text/Trim.h"

namespace kinsort {

namespace {

constexpr std::u16string_view kOpenWithShell = u"shellexecute";  // instead of an application

std::vector<std::u16string> TrimmedPieces(std::u16string_view text, char16_t separator) {
    std::vector<std::u16string> pieces = Split(text, separator);
    for (std::u16string& piece : pieces)
        piece = Trim(piece);
    std::erase(pieces, std::u16string());
    return pieces;
}

bool PassesFilter(std::u16string_view filter, std::u16string_view item) {
    if (filter.empty()) return true;
    const std::u16string extension = SplitPath(item).extension;
    const std::vector<std::u16string> taken = TrimmedPieces(filter, u',');
    return !extension.empty() && std::ranges::any_of(taken, [&extension](const std::u16string& entry) {
        return EqualNoCase(entry, std::u16string_view(extension).substr(1));
    });
}

// Empty when the user cancelled, or there is none.
std::u16string ChooseApplication(ScriptRun& run, const std::u16string& target) {
    std::vector<std::u16string> applications = TrimmedPieces(target, u'|');
    if (applications.size() < 2) return applications.empty() ? std::u16string() : applications.front();
    ChoiceRequest request;
    request.title = u"Kinsort";
    request.instruction = u"Please select an application.";
    request.choices = applications;
    request.owner = run.services.ui.MainWindow();
    const std::optional<size_t> chosen = run.services.ui.ChooseOne(request);
    return chosen && *chosen < applications.size() ? applications[*chosen] : std::u16string();
}

}  // namespace

bool RunDeferred(ScriptRun& run, const DeferredRun& deferred, const std::u16string& item) {
    const CommandOptions& options = deferred.options;
    if (!PassesFilter(options.filter, item)) return false;
    const std::u16string parameters = FillInItem(options.commandLineOption, item, run.services.system);
    const std::u16string application = ChooseApplication(run, deferred.target);
    if (EqualNoCase(application, kOpenWithShell)) {
        ShellLaunchFromThread(run.processes, GetFullPath(run.services.files, item), {}, {}, false, kShowNormal, false);
    } else if (!application.empty()) {
        LaunchBatch batch;
        batch.elevated = run.options.runAs ? 1 : 0;
        AddLaunchItem(batch, options.bootMode, application, parameters, deferred.workingFolder, options.showWindow,
                      options.timeoutMs);
        RunLaunchBatch(
            run.processes, [&run](int32_t ms) { run.Pause(ms); }, run.services.launchWorkers, batch);
    }
    run.Pause(options.runWaitMs);
    return true;
}

LineOutcome RunExRun(ScriptRun& run, const StatementCall& call) {
    const std::u16string value = run.services.folders.ExpandDirectoryMacros(call.value);
    std::optional<std::u16string> target = ExpandLine(value, run.scope, Trimming::kTrim);
    if (!target) return run.FailTooLong(call.line.statement);
    if (target->empty()) return LineOutcome::kNextLine;
    const std::u16string& option = run.options.bootDir;
    const bool isOwnFolder = !option.empty() && option != u"1";
    std::u16string folder = isOwnFolder ? ExpandPathText(option, run.scope) : WorkingFolderOf(run, *target);
    run.deferredRuns.push_back({run.options, std::move(*target), std::move(folder)});
    return LineOutcome::kNextLine;
}

}  // namespace kinsort
