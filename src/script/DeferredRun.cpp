#include "script/DeferredRun.h"

#include <algorithm>

#include "script/ScriptRun.h"

namespace kinsort {

void CarryOutDeferredRuns(ScriptRun& run) {
    // An item that was added meanwhile is not visited; a runner may not touch the list, but a script that took items
    // off it has left fewer than there were.
    for (size_t i = 0; i < std::min(run.itemsAtStart, run.selectedItems.size()) && !run.isCancelled(); ++i) {
        const std::u16string item = run.selectedItems[i];
        for (const DeferredRun& deferred : run.deferredRuns) {
            if (RunDeferred(run, deferred, item)) break;
        }
    }
}

}  // namespace kinsort
