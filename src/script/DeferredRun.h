// What "exrun" puts off to the end of its run.
#pragma once

#include <string>
#include <vector>

#include "hostlink/CommandOptions.h"
#include "script/LineOutcome.h"

namespace kinsort {

struct ScriptRun;

struct DeferredRun {
    CommandOptions options;        // as they were at the line
    std::u16string target;         // one or more applications, separated by "|"
    std::u16string workingFolder;  // in the place of options.bootDir
};

// One item through one deferred run. True when it has handled the item: the remaining ones are then skipped for it.
bool RunDeferred(ScriptRun& run, const DeferredRun& deferred, const std::u16string& item);

// At the normal end of a run: every item that was there when the run started and still is, in order, through the
// deferred runs in order, until one has handled it. Stops when the run is cancelled.
void CarryOutDeferredRuns(ScriptRun& run);

}  // namespace kinsort
