// How a voice that other commands have should speak. This program has none: the keywords are only checked.
#include "script/ScriptLine.h"
#include "script/ScriptRun.h"
#include "script/commands/Statements.h"

namespace kinsort {

LineOutcome RunSpeech(ScriptRun& run, const StatementCall& call) {
    return call.value.empty() ? run.Fail(ScriptError::kSyntax, call.line.statement) : LineOutcome::kNextLine;
}

}  // namespace kinsort
