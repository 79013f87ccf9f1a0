// The file that a script writes.
#pragma once

namespace kinsort {

struct ScriptRun;

// Closes the run's output file, if any. A file that could not be written to its end is told to the user; the run may go
// on.
void CloseOutputFile(ScriptRun& run);

}  // namespace kinsort
