// Starts a program and drops the selected items on its window.
#pragma once

#include <string_view>

namespace kinsort {

struct ScriptRun;

// The user is told when the program cannot be started, is not ready or shows no window in time.
void HandOverByDrop(ScriptRun& run, std::u16string_view target);

}  // namespace kinsort
