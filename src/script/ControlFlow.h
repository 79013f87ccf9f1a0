// The lines that steer a run: blocks, loops, jumps, exits, and the two filters that skip what is not to be run.
#pragma once

#include "script/LineOutcome.h"

namespace kinsort {

struct ScriptLine;
struct ScriptRun;

// True when the line lies in a branch that is skipped, or is the "else" or "endif" of the innermost block: it is done
// with.
bool IsTakenByIfBlock(ScriptRun& run, const ScriptLine& line);

// True when a loop that is over waits for its "next" or "while": the line is done with.
bool IsTakenByLoopSkip(ScriptRun& run, const ScriptLine& line);

// What lines of these kinds do.
LineOutcome RunIf(ScriptRun& run, const ScriptLine& line);
LineOutcome RunFor(ScriptRun& run, const ScriptLine& line);
LineOutcome RunNext(ScriptRun& run, const ScriptLine& line);
LineOutcome RunDo(ScriptRun& run, const ScriptLine& line);
LineOutcome RunWhile(ScriptRun& run, const ScriptLine& line);
LineOutcome RunContinue(ScriptRun& run, const ScriptLine& line);
LineOutcome RunBreak(ScriptRun& run, const ScriptLine& line);
LineOutcome RunGoto(ScriptRun& run, const ScriptLine& line);
LineOutcome RunExit(ScriptRun& run, const ScriptLine& line);
LineOutcome RunExitAll(ScriptRun& run, const ScriptLine& line);

}  // namespace kinsort
