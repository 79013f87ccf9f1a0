#include "script/DeferredRun.h"

namespace kinsort {

// Nothing defers a run yet: no command of the tables fills ScriptRun::deferredRuns.
bool RunDeferred(ScriptRun&, const DeferredRun&, const std::u16string&) {
    return false;
}

}  // namespace kinsort
