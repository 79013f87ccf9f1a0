// "setclipboardtext" and "GetClipboardText".
#include "script/ScriptRun.h"
#include "script/commands/Statements.h"
#include "script/functions/Functions.h"

namespace kinsort {

LineOutcome RunSetClipboardText(ScriptRun& run, const StatementCall& call) {
    run.services.ui.SetClipboardText(call.value);
    return LineOutcome::kNextLine;
}

FunctionResult CallGetClipboardText(ScriptRun& run, const FunctionCall&) {
    return FunctionResult::Text(run.services.ui.GetClipboardText());
}

}  // namespace kinsort
