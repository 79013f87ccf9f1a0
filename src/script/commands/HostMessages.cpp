#include "script/commands/HostMessages.h"

#include "framework/CopyData.h"
#include "script/ScriptLine.h"
#include "script/ScriptRun.h"
#include "text/Numbers.h"
#include "text/Split.h"
#include "text/Trim.h"

namespace kinsort {

namespace {

// A message that makes no sense does not end the run.
LineOutcome TellSyntaxError(ScriptRun& run, const StatementCall& call) {
    run.Tell(std::u16string(ScriptErrorText(ScriptError::kSyntax)).append(call.line.raw));
    return LineOutcome::kNextLine;
}

}  // namespace

// That it does not answer is nothing that the user of the script could mend.
void SendToHost(ScriptRun& run, std::u16string_view text, uint32_t code) {
    WindowMessages& windows = run.services.windows;
    if (!windows.IsWindowAlive(run.hostWindow)) return;
    (void)SendCopyData(windows, run.services.ui, run.hostWindow, text, code);
}

void SendToHost(ScriptRun& run, int32_t number, std::u16string_view text, uint32_t code) {
    WindowMessages& windows = run.services.windows;
    if (!windows.IsWindowAlive(run.hostWindow)) return;
    (void)SendCommandText(windows, run.services.ui, run.hostWindow, text, number, code);
}

LineOutcome SendNumbersToHost(ScriptRun& run, const StatementCall& call, uint32_t message, Delivery delivery) {
    std::u16string value(call.value);
    if (!ExpandVariables(run.variables, value)) return run.FailTooLong(call.line.statement);
    if (value.empty()) return TellSyntaxError(run, call);
    const std::vector<std::u16string> pieces = Split(value, u',');
    const int32_t first = ReadInt32(pieces[0]);
    const int32_t second = pieces.size() > 1 ? ReadInt32(pieces[1]) : 0;
    WindowMessages& windows = run.services.windows;
    if (!windows.IsWindowAlive(run.hostWindow)) return LineOutcome::kNextLine;
    if (first == 0) return TellSyntaxError(run, call);
    const auto wide = static_cast<uint64_t>(int64_t{first});
    if (delivery == Delivery::kSent)
        (void)windows.SendNumbers(run.hostWindow, message, wide, second);
    else
        (void)windows.PostNumbers(run.hostWindow, message, wide, second);
    return LineOutcome::kNextLine;
}

LineOutcome RunPostMessageTab(ScriptRun& run, const StatementCall& call) {
    return TellSyntaxError(run, call);
}

LineOutcome RunSystemCommand(ScriptRun& run, const StatementCall& call) {
    const size_t comma = call.value.find(u',');
    const std::u16string_view text = comma == call.value.npos ? std::u16string_view() : call.value.substr(comma + 1);
    SendToHost(run, TrimView(text), static_cast<uint32_t>(ReadInt32(call.value.substr(0, comma))));
    return LineOutcome::kNextLine;
}

}  // namespace kinsort
