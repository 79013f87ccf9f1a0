#include "script/DeferredRun.h"

#include <algorithm>

#include "script/ScriptRun.h"

namespace kinsort {

void CarryOutDeferredRuns(ScriptRun& run) {
    // An item that was added meanwhile is not visited; a runner may not touch the list, but a script that took items
    // off it has left fewer than there were.
    const size_t count = std::min(run.itemsAtStart, run.selectedItems.size());
    for (size_t i = 0; i < count && !run.isCancelled(); ++i) {
        for (const DeferredRun& deferred : run.deferredRuns) {
            if (RunDeferred(run, deferred, run.selectedItems[i])) break;
        }
    }
}

}  // namespace kinsort
