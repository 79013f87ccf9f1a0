// The batch engine's system calls on Linux 5.4 and later.
#pragma once

#include <memory>

#include "platform/Sys.h"

namespace kinsort {

// One for the process is enough; it must outlive every handle that it opened. A handle's number is the descriptor.
//
// The process's file mode mask is looked up once, when this is called.
std::unique_ptr<Sys> MakeLinuxSys();

// What the main function calls first, before there is a second thread. It lets the process open as many files as the
// hard limit allows, and ignores SIGXFSZ and SIGPIPE, so that a file beyond the size limit and a reader that went
// away are failures of the one call (kFileTooLarge, EPIPE) and do not end the program in the middle of a batch.
// Programs that are started afterwards inherit all three unless the code that starts them undoes it.
void PrepareLinuxProcess();

}  // namespace kinsort
