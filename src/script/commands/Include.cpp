// "include": another script in the middle of this one.
#include "script/ScriptRun.h"
#include "script/commands/Statements.h"

namespace kinsort {

LineOutcome RunInclude(ScriptRun& run, const StatementCall& call) {
    return RunIncludedScript(run, call.value);
}

}  // namespace kinsort
