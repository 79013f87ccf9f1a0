// Programs that are started by their command line, and waited for or not: "call" and "exec", as statements and as
// functions; "wait".
#include <optional>

#include "framework/Processes.h"
#include "script/ScriptLine.h"
#include "script/ScriptRun.h"
#include "script/commands/Statements.h"
#include "script/functions/Functions.h"
#include "text/Numbers.h"

namespace kinsort {

namespace {

// What the script sees when the user had the program ended.
constexpr uint32_t kKilledResult = kStillRunning;

enum class CallWaiting : uint8_t { kWaits, kDoesNotWait };

// Starts the command line. Its exit code in decimal, "259" while the program runs or when the user had it ended;
// nothing when it could not be started, which the user has been told, or when the run was cancelled meanwhile.
std::optional<std::u16string> RunCommandLine(ScriptRun& run, std::u16string_view commandLine, CallWaiting waiting) {
    const CommandOptions& options = run.options;
    const std::u16string& folder = options.bootDir.empty() ? run.scope.currentFolder : options.bootDir;
    Result<std::unique_ptr<Process>> process = StartCommandLine(run.processes, commandLine, folder, options.showWindow);
    if (!process.ok()) {
        ShowLastError(run.processes);
        return std::nullopt;
    }
    bool isKilled = false;
    if (waiting == CallWaiting::kWaits) {
        const WaitEnd end = WaitForEnd(run.processes, **process, options.timeoutMs);
        if (end == WaitEnd::kCancelled) return std::nullopt;
        isKilled = end == WaitEnd::kTimedOut && AskToKill(run.processes, **process);
    }
    const uint32_t result = isKilled ? kKilledResult : (*process)->ExitCode();
    process->reset();
    run.Pause(options.runWaitMs);
    return FormatInteger(result);
}

FunctionResult CallCommandLine(ScriptRun& run, const FunctionCall& call, CallWaiting waiting) {
    const std::optional<std::u16string> commandLine = ExpandLine(call.arguments, run.scope, Trimming::kTrim);
    if (!commandLine) {
        run.FailTooLong(call.statement);
        return FunctionResult::Ended();
    }
    std::optional<std::u16string> result = RunCommandLine(run, *commandLine, waiting);
    return result ? FunctionResult::Plain(std::move(*result)) : FunctionResult::Unchanged();
}

}  // namespace

LineOutcome RunCall(ScriptRun& run, const StatementCall& call) {
    (void)RunCommandLine(run, call.value, CallWaiting::kWaits);
    return LineOutcome::kNextLine;
}

LineOutcome RunExec(ScriptRun& run, const StatementCall& call) {
    (void)RunCommandLine(run, call.value, CallWaiting::kDoesNotWait);
    return LineOutcome::kNextLine;
}

FunctionResult CallCall(ScriptRun& run, const FunctionCall& call) {
    return CallCommandLine(run, call, CallWaiting::kWaits);
}

FunctionResult CallExec(ScriptRun& run, const FunctionCall& call) {
    return CallCommandLine(run, call, CallWaiting::kDoesNotWait);
}

LineOutcome RunWait(ScriptRun& run, const StatementCall& call) {
    run.Pause(ReadInt32(call.value));
    return LineOutcome::kNextLine;
}

}  // namespace kinsort
