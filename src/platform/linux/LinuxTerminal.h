// The standard streams and the terminal on Linux.
#pragma once

#include <memory>

#include "platform/Terminal.h"

namespace kinsort {

// One per process: it owns the process's signal handlers once CallOnInterrupt was called. Make it before any file is
// opened: standard streams that came closed are opened on nothing.
std::unique_ptr<Terminal> MakeLinuxTerminal();

}  // namespace kinsort
